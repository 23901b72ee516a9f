#include "platform/wayland/ForeignToplevelWindow.h"

#include "platform/linux/Terminals.h"

#include <algorithm>

namespace {

bool contains(const wl_array &states, uint32_t wanted) {
    const auto *first = static_cast<const uint32_t *>(states.data);
    const auto *end = first + states.size / sizeof(uint32_t);
    return std::find(first, end, wanted) != end;
}

} // namespace

QString ForeignToplevelWindow::problem(const WaylandConnection &wayland) {
    if (!wayland.isOpen())
        return wayland.problem();
    if (!wayland.offers(zwlr_foreign_toplevel_manager_v1_interface))
        return QStringLiteral("the compositor tells no program what windows there are");
    return {};
}

ForeignToplevelWindow::ForeignToplevelWindow(std::shared_ptr<WaylandConnection> wayland)
    : m_wayland(std::move(wayland)) {
    static constexpr zwlr_foreign_toplevel_manager_v1_listener listener{
        .toplevel =
            [](void *self, zwlr_foreign_toplevel_manager_v1 *,
               zwlr_foreign_toplevel_handle_v1 *handle) {
                static_cast<ForeignToplevelWindow *>(self)->add(handle);
            },
        .finished = [](void *, zwlr_foreign_toplevel_manager_v1 *) {},
    };
    if (!problem(*m_wayland).isEmpty())
        return;
    m_manager = holdWayland(m_wayland->bind<zwlr_foreign_toplevel_manager_v1>(
                                zwlr_foreign_toplevel_manager_v1_interface),
                            zwlr_foreign_toplevel_manager_v1_destroy);
    zwlr_foreign_toplevel_manager_v1_add_listener(m_manager.get(), &listener, this);
}

ForeignToplevelWindow::~ForeignToplevelWindow() = default;

void ForeignToplevelWindow::add(zwlr_foreign_toplevel_handle_v1 *handle) {
    using Handle = zwlr_foreign_toplevel_handle_v1;
    static constexpr zwlr_foreign_toplevel_handle_v1_listener listener{
        .title = [](void *, Handle *, const char *) {},
        .app_id = [](void *window, Handle *,
                     const char *appId) { static_cast<Window *>(window)->appId = appId; },
        .output_enter = [](void *, Handle *, wl_output *) {},
        .output_leave = [](void *, Handle *, wl_output *) {},
        .state =
            [](void *window, Handle *, wl_array *states) {
                static_cast<Window *>(window)->isActivated =
                    contains(*states, ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED);
            },
        .done = [](void *, Handle *) {},
        .closed =
            [](void *data, Handle *) {
                std::erase_if(static_cast<Window *>(data)->front->m_windows,
                              [=](const auto &window) { return window.get() == data; });
            },
        .parent = [](void *, Handle *, Handle *) {},
    };
    auto &window = m_windows.emplace_back(std::make_unique<Window>());
    window->front = this;
    window->handle = holdWayland(handle, zwlr_foreign_toplevel_handle_v1_destroy);
    zwlr_foreign_toplevel_handle_v1_add_listener(handle, &listener, window.get());
}

void ForeignToplevelWindow::find(std::function<void(Kind)> done) {
    m_wayland->handleEvents();
    const auto front = std::find_if(m_windows.begin(), m_windows.end(),
                                    [](const auto &window) { return window->isActivated; });
    if (front == m_windows.end() || !m_wayland->isOpen())
        done(Kind::Unknown);
    else
        done(Terminals::isTerminal((*front)->appId) ? Kind::Terminal : Kind::Application);
}
