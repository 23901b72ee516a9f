#pragma once

#include "model/Result.h"
#include "platform/Hotkeys.h"
#include "platform/linux/HotkeyHold.h"

#include <memory>

class KGlobalAccelHotkeys;

/// What KDE Plasma offers on any display server; the reason where it offers it not. Main thread.
class KdeBackends {
public:
    Result<std::shared_ptr<Hotkeys>> globalAccel();

    /// Whether the hotkey is held; never, until there are hotkeys.
    std::shared_ptr<const HotkeyHold> hold() const;

private:
    std::shared_ptr<KGlobalAccelHotkeys> m_hotkeys;
};
