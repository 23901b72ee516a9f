#pragma once

#include "model/HotkeyFormat.h"

#include <optional>

/// Key combinations in the notation of GNOME's settings, such as "<Control><Alt>v".
namespace Accelerators {

/// By the place of the key ("<Control>0x37"), which is the same in every layout; empty for a key
/// that PC keyboards lack.
QString of(const KeyCombo &combo);

/// The combination that `text` means on a US keyboard; nothing for what no hotkey can be.
std::optional<KeyCombo> parse(const QString &text);

} // namespace Accelerators
