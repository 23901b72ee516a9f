#pragma once

#include "platform/Hotkeys.h"

#include <QMap>

/// The user's hands on the keyboard, and another program that wants hotkeys.
class HotkeyNeighbours {
public:
    virtual ~HotkeyNeighbours() = default;

    /// The user presses Ctrl+Alt+Super and V or C; `isHeld`: until the keys have repeated.
    virtual void press(const KeyCombo &combo, bool isHeld) = 0;

    /// The other program takes this combination and none besides; false when it can't have it.
    virtual bool take(const KeyCombo &combo) = 0;
};

/// What hotkeys must do where the combination is ours to choose. Each row wants a port of its own.
namespace HotkeysContract {

/// The rows, by name; the text is what went wrong, empty if nothing did.
QMap<QString, std::function<QString(Hotkeys &, HotkeyNeighbours &)>> rows();

} // namespace HotkeysContract
