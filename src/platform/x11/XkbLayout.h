#pragma once

#include "platform/PasteKeys.h"

#include <xcb/xcb.h>

#include <optional>

/// The keyboard layout as the X server has it.
namespace XkbLayout {

/// What each key types without modifiers in the group in force, by virtual key code; nothing when
/// the server does not say. Asks anew each time: the group changes with the window in focus.
std::optional<KeyLayout> read(xcb_connection_t *connection);

} // namespace XkbLayout
