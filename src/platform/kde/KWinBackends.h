#pragma once

#include "model/Result.h"
#include "platform/Dispatch.h"
#include "platform/FrontWindow.h"
#include "platform/PasteKeys.h"
#include "platform/linux/HotkeyHold.h"

#include <memory>

class WaylandConnection;

/// What KWin offers as a compositor beyond what others do; the reason where it offers it not. Main
/// thread.
class KWinBackends {
public:
    KWinBackends(std::shared_ptr<Dispatch> dispatch, std::shared_ptr<WaylandConnection> wayland);

    /// `hold` tells of the hotkey.
    Result<std::shared_ptr<PasteKeys>> fakeInput(std::shared_ptr<const HotkeyHold> hold);
    Result<std::shared_ptr<FrontWindow>> plasmaWindows();

private:
    std::shared_ptr<Dispatch> m_dispatch;
    std::shared_ptr<WaylandConnection> m_wayland;
};
