#pragma once

#include "model/HotkeyFormat.h"

#include <functional>

/// System-wide key combinations. Main thread only.
class Hotkeys {
public:
    virtual ~Hotkeys() = default;

    /// Registers `combo`; `pressed` runs once for each press, however long it is held. Returns
    /// false when the combination can't be had (taken by somebody else, no such key).
    virtual bool add(const KeyCombo &combo, std::function<void()> pressed) = 0;

    /// Gives every registration back.
    virtual void removeAll() = 0;
};
