#include "stage/VirtualKeyboard.h"

#include "stage/VirtualDesktop.h"

#include <xcb/xtest.h>

using namespace Qt::StringLiterals;

namespace {

using Stroke = VirtualKeyboard::Stroke;

class XKeys : public VirtualKeyboard::Keys {
public:
    explicit XKeys(const QString &display) : m_x(display) {}

    bool strike(const QList<Stroke> &strokes) override {
        if (!m_x.isValid())
            return false;
        QList<xcb_void_cookie_t> cookies;
        for (const Stroke &stroke : strokes)
            cookies.append(xcb_test_fake_input_checked(
                m_x.get(), stroke.isPress ? XCB_KEY_PRESS : XCB_KEY_RELEASE,
                static_cast<uint8_t>(stroke.code), XCB_CURRENT_TIME, m_x.root(), 0, 0, 0));
        bool done = true;
        for (const xcb_void_cookie_t &cookie : cookies) {
            const XOwned<xcb_generic_error_t> error(xcb_request_check(m_x.get(), cookie));
            done = done && !error;
        }
        return done && m_x.isValid();
    }

private:
    XConnection m_x;
};

class WaylandKeys : public VirtualKeyboard::Keys {
public:
    explicit WaylandKeys(StageProcess &keyboard) : m_keyboard(keyboard) {}

    bool strike(const QList<Stroke> &strokes) override {
        QStringList line;
        for (const Stroke &stroke : strokes)
            line.append((stroke.isPress ? u'+' : u'-') + QString::number(stroke.code - keyCode(0)));
        const qsizetype before = m_keyboard.events(u"done"_s).size();
        m_keyboard.send(line.join(u' '));
        // Without the event loop, as on an X server.
        const auto isDone = [&] { return m_keyboard.events(u"done"_s).size() > before; };
        constexpr int patience = 5000;
        while (!isDone() && m_keyboard.waitForReadyRead(patience)) {
        }
        return isDone() && m_keyboard.events(u"done"_s).constLast()[u"ok"].toBool();
    }

private:
    StageProcess &m_keyboard;
};

std::unique_ptr<VirtualKeyboard::Keys> keysOf(const VirtualDesktop &desktop) {
    if (StageProcess *keyboard = desktop.keyboard())
        return std::make_unique<WaylandKeys>(*keyboard);
    return std::make_unique<XKeys>(desktop.keyboardDisplay());
}

} // namespace

VirtualKeyboard::VirtualKeyboard(const QString &display)
    : m_keys(std::make_unique<XKeys>(display)) {}

VirtualKeyboard::VirtualKeyboard(const VirtualDesktop &desktop) : m_keys(keysOf(desktop)) {}

VirtualKeyboard::~VirtualKeyboard() {
    while (!m_held.isEmpty())
        release(m_held.last());
}

bool VirtualKeyboard::press(int code) {
    return strike({{code, true}});
}

bool VirtualKeyboard::release(int code) {
    return strike({{code, false}});
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
    return strike(strokes);
}

bool VirtualKeyboard::strike(const QList<Stroke> &strokes) {
    for (const Stroke &stroke : strokes) {
        m_held.removeAll(stroke.code);
        if (stroke.isPress)
            m_held.append(stroke.code);
    }
    return m_keys->strike(strokes);
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
