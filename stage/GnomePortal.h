#pragma once

#include "stage/DesktopHome.h"

/// Starts GNOME's portals, which ask the user on the screen, and waits until they can ask for keys.
/// Needs the shell and the bus.
void beginGnomePortal(DesktopHome &home);
