#include "platform/x11/X11Backends.h"

#include "platform/x11/X11Clipboard.h"
#include "platform/x11/X11EventSource.h"
#include "platform/x11/X11FrontWindow.h"
#include "platform/x11/X11Hotkeys.h"
#include "platform/x11/X11KeyboardGrab.h"
#include "platform/x11/X11PasteKeys.h"

namespace {

/// A server that does not answer by then is not there.
constexpr std::chrono::seconds longestConnect{2};

/// A compositor may fail to bring its X server up, and then nobody ever answers. The thread that
/// waits can't be ended; it is left behind with what it uses.
void endIfPossible(ThreadedPasteboard *pasteboard) {
    if (pasteboard->hasAnswered())
        delete pasteboard;
}

const QString noServer = QStringLiteral("no X server answers");

} // namespace

X11Backends::X11Backends(std::shared_ptr<Dispatch> dispatch)
    : m_dispatch(std::move(dispatch)),
      m_pasteboard(new ThreadedPasteboard(m_dispatch,
                                          [](int interrupt, ThreadedPasteboard::News news) {
                                              return std::make_unique<X11Clipboard>(
                                                  interrupt, std::move(news));
                                          }),
                   endIfPossible) {}

X11Backends::~X11Backends() = default;

std::shared_ptr<X11Connection> X11Backends::connection() {
    if (!m_x11)
        m_x11 = connectToX11();
    return *m_x11;
}

std::shared_ptr<X11Hotkeys> X11Backends::grabs() {
    if (!m_grabs)
        m_grabs = std::make_shared<X11Hotkeys>(connection());
    return m_grabs;
}

Result<std::shared_ptr<Pasteboard>> X11Backends::pasteboard() {
    const QString problem = m_pasteboard->problem(longestConnect);
    if (!problem.isEmpty())
        return Result<std::shared_ptr<Pasteboard>>::failure(problem);
    return std::shared_ptr<Pasteboard>(m_pasteboard);
}

std::shared_ptr<Pasteboard> X11Backends::pasteboardLater() {
    m_pasteboard->awaitServer(longestConnect);
    return m_pasteboard;
}

Result<std::shared_ptr<Hotkeys>> X11Backends::hotkeys() {
    if (!connection())
        return Result<std::shared_ptr<Hotkeys>>::failure(noServer);
    return std::shared_ptr<Hotkeys>(grabs());
}

Result<std::shared_ptr<PasteKeys>> X11Backends::pasteKeys() {
    if (!connection())
        return Result<std::shared_ptr<PasteKeys>>::failure(noServer);
    const auto keys = std::make_shared<X11PasteKeys>(connection(), grabs(), m_dispatch);
    if (keys->access().state != PasteAccess::State::Ready)
        return Result<std::shared_ptr<PasteKeys>>::failure(keys->access().reason);
    return std::shared_ptr<PasteKeys>(keys);
}

Result<std::shared_ptr<FrontWindow>> X11Backends::frontWindow() {
    if (!connection())
        return Result<std::shared_ptr<FrontWindow>>::failure(noServer);
    return std::shared_ptr<FrontWindow>(std::make_shared<X11FrontWindow>(connection()));
}

Result<std::shared_ptr<SecureInput>> X11Backends::keyboardGrab() {
    if (!connection())
        return Result<std::shared_ptr<SecureInput>>::failure(noServer);
    return std::shared_ptr<SecureInput>(
        std::make_shared<X11KeyboardGrab>(connection(), grabs(), m_dispatch));
}
