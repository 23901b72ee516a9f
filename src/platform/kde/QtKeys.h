#pragma once

#include "model/HotkeyFormat.h"

#include <QList>

/// Hotkeys as the toolkit's key codes, a key by what it types on a US keyboard. KDE's shortcuts
/// are told apart by these.
namespace QtKeys {

/// The key with its modifiers; nothing for a combination that cannot be told that way. Two where
/// Shift makes another character of the key: some ask for the one, some for the other.
QList<int> of(const KeyCombo &combo);

} // namespace QtKeys
