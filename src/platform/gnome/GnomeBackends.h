#pragma once

#include "model/Result.h"
#include "platform/Dispatch.h"
#include "platform/Hotkeys.h"
#include "platform/linux/HeldKeys.h"

#include <memory>

class KeyProbe;

/// What GNOME offers; the reason where it offers it not. Main thread.
class GnomeBackends {
public:
    explicit GnomeBackends(std::shared_ptr<Dispatch> dispatch);

    Result<std::shared_ptr<Hotkeys>> customKeybindings();

    /// Tells when no key is held; null as long as there are no hotkeys of customKeybindings().
    std::shared_ptr<HeldKeys> heldKeys() const;

private:
    std::shared_ptr<Dispatch> m_dispatch;
    std::shared_ptr<KeyProbe> m_probe;
};
