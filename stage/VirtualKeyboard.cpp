#include "stage/VirtualKeyboard.h"

#include <xcb/xtest.h>

VirtualKeyboard::~VirtualKeyboard() {
    while (!m_held.isEmpty())
        release(m_held.last());
}

bool VirtualKeyboard::press(int code) {
    return fake({{code, true}});
}

bool VirtualKeyboard::release(int code) {
    return fake({{code, false}});
}

bool VirtualKeyboard::tap(int code) {
    return chord({code});
}

bool VirtualKeyboard::chord(std::initializer_list<int> codes) {
    QList<Stroke> strokes;
    for (const int code : codes)
        strokes.append({code, true});
    for (auto code = std::rbegin(codes); code != std::rend(codes); ++code)
        strokes.append({*code, false});
    return fake(strokes);
}

// All in one go: a key must not begin to repeat because this process has to wait for its turn.
bool VirtualKeyboard::fake(const QList<Stroke> &strokes) {
    if (!m_x.isValid())
        return false;
    QList<xcb_void_cookie_t> cookies;
    for (const Stroke &stroke : strokes) {
        m_held.removeAll(stroke.code);
        if (stroke.isPress)
            m_held.append(stroke.code);
        cookies.append(xcb_test_fake_input_checked(
            m_x.get(), stroke.isPress ? XCB_KEY_PRESS : XCB_KEY_RELEASE,
            static_cast<uint8_t>(stroke.code), XCB_CURRENT_TIME, m_x.root(), 0, 0, 0));
    }
    bool done = true;
    for (const xcb_void_cookie_t &cookie : cookies) {
        const XOwned<xcb_generic_error_t> error(xcb_request_check(m_x.get(), cookie));
        done = done && !error;
    }
    return done && m_x.isValid();
}

QList<int> heldKeys(const QString &display) {
    const XConnection x(display);
    QList<int> held;
    if (!x.isValid())
        return held;
    const XOwned<xcb_query_keymap_reply_t> reply(
        xcb_query_keymap_reply(x.get(), xcb_query_keymap(x.get()), nullptr));
    for (int code = 0; reply && code < 256; ++code) {
        if (reply->keys[code / 8] >> (code % 8) & 1)
            held.append(code);
    }
    return held;
}

uint16_t modifiersInForce(const QString &display) {
    const XConnection x(display);
    if (!x.isValid())
        return 0;
    const XOwned<xcb_query_pointer_reply_t> reply(
        xcb_query_pointer_reply(x.get(), xcb_query_pointer(x.get(), x.root()), nullptr));
    return reply ? reply->mask & 0xff : 0;
}
