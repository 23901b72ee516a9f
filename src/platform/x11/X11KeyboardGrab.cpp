#include "platform/x11/X11KeyboardGrab.h"

#include <algorithm>

namespace {

/// A menu that started the run may hold the keyboard until it has closed.
constexpr std::chrono::milliseconds menuCloses{100};

constexpr std::chrono::milliseconds betweenLooks{10};

} // namespace

X11KeyboardGrab::X11KeyboardGrab(std::shared_ptr<X11Connection> x11,
                                 std::shared_ptr<X11Hotkeys> hotkeys,
                                 std::shared_ptr<Dispatch> dispatch)
    : m_x11(std::move(x11)), m_hotkeys(std::move(hotkeys)), m_dispatch(std::move(dispatch)) {}

X11KeyboardGrab::~X11KeyboardGrab() {
    m_nextLook.cancel();
}

void X11KeyboardGrab::check(std::chrono::milliseconds deadline, std::function<void(Answer)> done) {
    m_nextLook.cancel();
    lookAgain(m_dispatch->now() + std::min(deadline, menuCloses), done);
}

void X11KeyboardGrab::lookAgain(Dispatch::Clock::time_point deadline,
                                const std::function<void(Answer)> &done) {
    const Answer answer = look();
    if (answer == Answer::No || m_dispatch->now() >= deadline) {
        done(answer);
        return;
    }
    m_nextLook =
        m_dispatch->after(betweenLooks, [this, deadline, done] { lookAgain(deadline, done); });
}

SecureInput::Answer X11KeyboardGrab::look() const {
    // While our own hotkey is held nobody else can hold the keyboard, and trying would end our
    // hold.
    if (m_hotkeys->heldKey())
        return Answer::No;
    const auto cookie = xcb_grab_keyboard(*m_x11, 0, m_x11->root(), XCB_CURRENT_TIME,
                                          XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const XcbPtr<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(*m_x11, cookie, nullptr));
    if (!reply)
        return Answer::Unknown;
    if (reply->status == XCB_GRAB_STATUS_SUCCESS) {
        xcb_ungrab_keyboard(*m_x11, XCB_CURRENT_TIME);
        xcb_flush(*m_x11);
        return Answer::No;
    }
    return reply->status == XCB_GRAB_STATUS_ALREADY_GRABBED ? Answer::Yes : Answer::Unknown;
}
