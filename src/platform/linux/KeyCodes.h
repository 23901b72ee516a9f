#pragma once

#include <QtGlobal>

#include <optional>

/// Physical keys: the virtual key codes in which hotkeys are stored (those of the ANSI Mac
/// keyboard) as X key codes (the kernel's evdev codes plus 8). The two number sets are those of the
/// public keycodemapdb tables.
namespace KeyCodes {

/// The X key code of the key in that place, or nothing for a key that PC keyboards lack.
std::optional<quint8> x11FromVirtual(quint32 virtualKey);

/// The other way round: the virtual key code of the key with that X key code, or nothing.
std::optional<quint32> virtualFromX11(quint32 x11KeyCode);

} // namespace KeyCodes
