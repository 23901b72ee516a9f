#pragma once

#include "model/Result.h"
#include "platform/Hotkeys.h"
#include "platform/linux/KeyProbe.h"

#include <memory>

/// What GNOME offers; the reason where it offers it not. Main thread.
namespace GnomeBackends {

/// Whether the session is GNOME's.
bool isDesktop();

/// `probe` goes along with the hotkeys if it is wanted.
Result<std::shared_ptr<Hotkeys>> customKeybindings(std::shared_ptr<KeyProbe> probe);

} // namespace GnomeBackends
