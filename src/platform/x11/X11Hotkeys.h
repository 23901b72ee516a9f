#pragma once

#include "platform/Hotkeys.h"
#include "platform/x11/X11Connection.h"

#include <QList>
#include <QTimer>

#include <memory>

/// Hotkeys as passive grabs on the root window, each in every combination of the lock keys. A
/// hotkey is a place on the keyboard; its keys do not move with the layout.
class X11Hotkeys : public QObject, public Hotkeys {
    Q_OBJECT

public:
    explicit X11Hotkeys(std::shared_ptr<X11Connection> x11);

    void bind(const QList<KeyCombo> &all, std::function<void()> pressed,
              std::function<void()> released, Outcome outcome) override;
    void unbind() override;
    std::optional<quint32> virtualKey(quint32 nativeScanCode) const override;

    /// The key of the hotkey that is held, for which the server lends us the keyboard, or 0.
    xcb_keycode_t heldKey() const { return m_held; }

private:
    /// Which modifier bit each modifier key drives on this keyboard.
    struct Masks {
        uint16_t super = XCB_MOD_MASK_4;
        uint16_t alt = XCB_MOD_MASK_1;
        uint16_t numLock = 0;
        uint16_t scrollLock = 0;

        bool operator==(const Masks &) const = default;
    };
    struct Registration {
        KeyCombo combo;
        xcb_keycode_t key;
        uint16_t modifiers;
    };

    bool handle(const xcb_generic_event_t &event);
    void keyPressed(const xcb_key_press_event_t &event);
    void keyReleased(const xcb_key_release_event_t &event);
    Masks readMasks() const;
    uint16_t modifierMask(const KeyCombo &combo) const;
    QList<uint16_t> lockVariants() const;
    QString add(const KeyCombo &combo);
    bool grab(xcb_keycode_t key, uint16_t modifiers);
    void ungrab(const Registration &registration);
    void keyboardChanged();

    std::shared_ptr<X11Connection> m_x11;
    Masks m_masks;
    QList<Registration> m_registrations;
    QTimer m_settle; ///< keyboard changes come in bursts, one for each change of device
    std::function<void()> m_pressed;
    std::function<void()> m_released;
    xcb_keycode_t m_held = 0;
    X11Connection::Clock::time_point m_lastPress;
};
