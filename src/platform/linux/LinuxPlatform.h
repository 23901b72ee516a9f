#pragma once

#include "platform/Platform.h"

/// The ports of a Linux desktop: its Wayland compositor or X server, D-Bus and the freedesktop
/// services. To be called once, after
/// the QApplication exists.
Platform makeLinuxPlatform();
