#pragma once

#include "model/HotkeyFormat.h"

#include <QList>
#include <QString>

#include <functional>
#include <optional>

/// System-wide key combinations. Main thread only. No call waits for another program but the
/// display server; answers come through callbacks on the main thread, perhaps before the call
/// returns.
class Hotkeys {
public:
    /// A combination that can't be had, and why: a text that goes on after it, such as "is taken by
    /// another program".
    struct Refusal {
        KeyCombo combo;
        QString reason;
    };
    using Outcome = std::function<void(const QList<Refusal> &)>;

    /// What to do on a desktop where the combination is not ours to choose.
    struct DesktopsChoice {
        /// What the desktop shows for the hotkey, or where it says nothing a sentence that tells
        /// the user what to do.
        QString text;
        std::function<void()> openSettings; ///< leads to where it is chosen; may be empty
        QString line = {}; ///< what the user has to put there; empty where nothing is to be typed
        QString action =
            {}; ///< the words of the button for `openSettings`, where it leads elsewhere
    };

    virtual ~Hotkeys() = default;

    /// Why there are no hotkeys on this desktop; empty when there are.
    virtual QString unavailableBecause() const { return {}; }

    /// Replaces every registration by `all`. `pressed` runs once for each press, however long it is
    /// held, `released` when its first key is up, where the desktop tells. `outcome` gets those
    /// that can't be had.
    virtual void bind(const QList<KeyCombo> &all, std::function<void()> pressed,
                      std::function<void()> released, Outcome outcome) = 0;

    /// Whether bind() shows the user nothing.
    virtual bool bindsSilently() const { return true; }

    /// Gives every registration back.
    virtual void unbind() = 0;

    /// The program was run to paste, as a key binding of the desktop does. True where hotkeys come
    /// that way and this was one, which has run `pressed` unless the key only repeats.
    virtual bool pressedByCommand() { return false; }

    /// Nothing where the combination is ours to choose.
    virtual std::optional<DesktopsChoice> desktopsChoice() const { return std::nullopt; }

    /// The key code, as hotkeys have it, of the key that a key event of the toolkit names by
    /// `nativeScanCode`; nothing for a key that no hotkey can have.
    virtual std::optional<quint32> virtualKey(quint32 nativeScanCode) const = 0;
};
