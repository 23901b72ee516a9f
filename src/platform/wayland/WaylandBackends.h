#pragma once

#include "model/Result.h"
#include "platform/Dispatch.h"
#include "platform/FrontWindow.h"
#include "platform/Hotkeys.h"
#include "platform/PasteKeys.h"
#include "platform/Pasteboard.h"

#include <memory>

class WaylandConnection;

/// What a Wayland compositor offers, each by itself; the reason where it offers it not. Main
/// thread.
class WaylandBackends {
public:
    explicit WaylandBackends(std::shared_ptr<Dispatch> dispatch);
    ~WaylandBackends();

    /// Whether the session is a compositor's.
    bool isSession() const;
    /// The connection they share.
    std::shared_ptr<WaylandConnection> connection() const { return m_wayland; }

    Result<std::shared_ptr<Pasteboard>> dataControl();
    Result<std::shared_ptr<PasteKeys>> virtualKeyboard();
    Result<std::shared_ptr<Hotkeys>> sway();
    Result<std::shared_ptr<FrontWindow>> foreignToplevel();

private:
    std::shared_ptr<Dispatch> m_dispatch;
    std::shared_ptr<WaylandConnection> m_wayland;
};
