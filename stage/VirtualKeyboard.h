#pragma once

#include "stage/XConnection.h"

#include <QList>

#include <linux/input-event-codes.h>

#include <initializer_list>
#include <memory>

class VirtualDesktop;

/// The X key code of a key of linux/input-event-codes.h (KEY_V, KEY_LEFTCTRL, ...): a place on
/// the keyboard, whatever the layout.
constexpr int keyCode(int evdevCode) {
    return evdevCode + 8;
}

/// Hands on a keyboard. On an X server they press keys by XTEST; on keyboardDisplay() of a desktop
/// with a physical keyboard these are real keys to its inner display. On Wayland they are on the
/// keyboard that came up with the desktop. Each call returns when the named display or the
/// compositor has been told; who has the focus may take a moment longer.
class VirtualKeyboard {
public:
    /// Key codes below are X key codes. Invalid displays make every call return false.
    explicit VirtualKeyboard(const QString &display);
    /// The keyboard of a desktop, which must outlive these hands.
    explicit VirtualKeyboard(const VirtualDesktop &desktop);
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

    struct Stroke {
        int code;
        bool isPress;
    };
    /// What the hands lie on.
    class Keys {
    public:
        virtual ~Keys() = default;
        /// All in one go: a key must not begin to repeat because this process has to wait for its
        /// turn.
        virtual bool strike(const QList<Stroke> &strokes) = 0;
    };

private:
    bool strike(const QList<Stroke> &strokes);

    std::unique_ptr<Keys> m_keys;
    QList<int> m_held;
};

/// The X key codes that are down on a display by any of its keyboards, ascending.
QList<int> heldKeys(const QString &display);

/// The modifiers in force on a display (bits of xcb_mod_mask_t, so locks count too).
uint16_t modifiersInForce(const QString &display);
