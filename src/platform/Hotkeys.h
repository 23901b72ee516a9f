#pragma once

#include "model/HotkeyFormat.h"

#include <functional>
#include <optional>

/// System-wide key combinations. Main thread only.
class Hotkeys {
public:
    virtual ~Hotkeys() = default;

    /// Registers `combo`; `pressed` runs once for each press, however long it is held. Returns
    /// false when the combination can't be had (taken by somebody else, no such key).
    virtual bool add(const KeyCombo &combo, std::function<void()> pressed) = 0;

    /// Gives every registration back.
    virtual void removeAll() = 0;

    /// The key code, as hotkeys have it, of the key that a key event of the toolkit names by
    /// `nativeScanCode`; nothing for a key that no hotkey can have.
    virtual std::optional<quint32> virtualKey(quint32 nativeScanCode) const = 0;
};
