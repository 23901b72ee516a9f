#pragma once

#include "stage/DesktopHome.h"

/// Whether this machine's GNOME gives programs hotkeys, and remembers what they may do (48 does).
bool gnomeGivesHotkeys();

/// Starts GNOME's portals, which ask the user on the screen, and waits until they can ask for keys.
/// Needs the shell and the bus.
void beginGnomePortal(DesktopHome &home);
