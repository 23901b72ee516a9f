#pragma once

#include "model/HotkeyFormat.h"

#include <optional>

/// Hotkeys as the toolkit's key codes, a key by what it types on a US keyboard. KDE's shortcuts
/// are told apart by these.
namespace QtKeys {

/// The key with its modifiers; nothing for a combination that cannot be told that way.
std::optional<int> of(const KeyCombo &combo);

} // namespace QtKeys
