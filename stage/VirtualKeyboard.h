#pragma once

#include "stage/XConnection.h"

#include <QList>

#include <linux/input-event-codes.h>

#include <initializer_list>

/// The X key code of a key of linux/input-event-codes.h (KEY_V, KEY_LEFTCTRL, ...): a place on
/// the keyboard, whatever the layout.
constexpr int keyCode(int evdevCode) {
    return evdevCode + 8;
}

/// Hands on a keyboard: presses keys of a display by XTEST. On keyboardDisplay() of
/// a desktop with a physical keyboard these are real keys to its inner display. Each call
/// returns when the named display has carried it out; the inner one may take a moment longer.
class VirtualKeyboard {
public:
    /// Key codes below are X key codes. Invalid displays make every call return false.
    explicit VirtualKeyboard(const QString &display) : m_x(display) {}
    /// Lets go of whatever is still held.
    ~VirtualKeyboard();
    VirtualKeyboard(const VirtualKeyboard &) = delete;
    VirtualKeyboard &operator=(const VirtualKeyboard &) = delete;

    /// Presses a key and keeps it down; on the display it repeats after two thirds of a
    /// second, as keys do.
    bool press(int code);
    /// Lets go of a key.
    bool release(int code);
    /// Presses a key and lets go of it.
    bool tap(int code);
    /// Presses the keys in turn (modifiers first) and lets go of them in reverse.
    bool chord(std::initializer_list<int> codes);
    /// The keys this object holds down, in the order of pressing.
    const QList<int> &held() const { return m_held; }

private:
    struct Stroke {
        int code;
        bool isPress;
    };
    bool fake(const QList<Stroke> &strokes);

    XConnection m_x;
    QList<int> m_held;
};

/// The X key codes that are down on a display by any of its keyboards, ascending.
QList<int> heldKeys(const QString &display);

/// The modifiers in force on a display (bits of xcb_mod_mask_t, so locks count too).
uint16_t modifiersInForce(const QString &display);
