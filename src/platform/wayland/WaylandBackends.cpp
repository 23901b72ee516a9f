#include "platform/wayland/WaylandBackends.h"

#include "platform/wayland/DataControlClipboard.h"
#include "platform/wayland/ForeignToplevelWindow.h"
#include "platform/wayland/SwayHotkeys.h"
#include "platform/wayland/VirtualKeyboardKeys.h"
#include "platform/wayland/WaylandEventSource.h"

namespace {

/// A compositor that does not answer by then offers nothing.
constexpr std::chrono::seconds longestConnect{2};

template <class Port>
Result<std::shared_ptr<Port>> resultOf(const std::shared_ptr<Port> &port, const QString &problem) {
    return problem.isEmpty() ? Result<std::shared_ptr<Port>>(port)
                             : Result<std::shared_ptr<Port>>::failure(problem);
}

} // namespace

WaylandBackends::WaylandBackends(std::shared_ptr<Dispatch> dispatch)
    : m_dispatch(std::move(dispatch)), m_wayland(connectToWayland()) {}

WaylandBackends::~WaylandBackends() = default;

bool WaylandBackends::isSession() const {
    return m_wayland->isOpen();
}

Result<std::shared_ptr<Pasteboard>> WaylandBackends::dataControl() {
    if (const QString problem = DataControl::problem(*m_wayland); !problem.isEmpty())
        return Result<std::shared_ptr<Pasteboard>>::failure(problem);
    const auto pasteboard = std::make_shared<ThreadedPasteboard>(
        m_dispatch, [](int interrupt, ThreadedPasteboard::News news) {
            return std::make_unique<DataControlClipboard>(interrupt, std::move(news));
        });
    return resultOf<Pasteboard>(pasteboard, pasteboard->problem(longestConnect));
}

Result<std::shared_ptr<PasteKeys>> WaylandBackends::virtualKeyboard() {
    const auto keys = std::make_shared<VirtualKeyboardKeys>(m_wayland, m_dispatch);
    return resultOf<PasteKeys>(keys, keys->access().reason);
}

Result<std::shared_ptr<Hotkeys>> WaylandBackends::sway() {
    const auto hotkeys = std::make_shared<SwayHotkeys>();
    return resultOf<Hotkeys>(hotkeys, hotkeys->unavailableBecause());
}

Result<std::shared_ptr<FrontWindow>> WaylandBackends::foreignToplevel() {
    const auto window = std::make_shared<ForeignToplevelWindow>(m_wayland);
    return resultOf<FrontWindow>(window, ForeignToplevelWindow::problem(*m_wayland));
}
