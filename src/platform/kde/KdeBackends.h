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

    /// Whether the hotkey is held; `others` word, until there are hotkeys here.
    std::shared_ptr<const HotkeyHold> holdOr(std::shared_ptr<const HotkeyHold> others) const;

private:
    std::shared_ptr<KGlobalAccelHotkeys> m_hotkeys;
};
