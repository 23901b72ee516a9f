#pragma once

#include "model/Result.h"
#include "platform/Dispatch.h"
#include "platform/FrontWindow.h"
#include "platform/Hotkeys.h"
#include "platform/PasteKeys.h"
#include "platform/Pasteboard.h"
#include "platform/SecureInput.h"

#include <memory>
#include <optional>

class ThreadedPasteboard;
class X11Connection;
class X11Hotkeys;

/// What an X server offers, each by itself; the reason where it offers it not. The clipboard has a
/// connection of its own, which is opened at once and on its own thread. Main thread.
class X11Backends {
public:
    explicit X11Backends(std::shared_ptr<Dispatch> dispatch);
    ~X11Backends();

    Result<std::shared_ptr<Pasteboard>> pasteboard();
    /// The same without waiting for the server, which may only be starting.
    std::shared_ptr<Pasteboard> pasteboardLater();
    Result<std::shared_ptr<Hotkeys>> hotkeys();
    Result<std::shared_ptr<PasteKeys>> pasteKeys();
    Result<std::shared_ptr<FrontWindow>> frontWindow();
    Result<std::shared_ptr<SecureInput>> keyboardGrab();

    /// The main thread's connection, made when first asked for; null without a server.
    std::shared_ptr<X11Connection> connection();

private:
    std::shared_ptr<X11Hotkeys> grabs();

    std::shared_ptr<Dispatch> m_dispatch;
    std::shared_ptr<ThreadedPasteboard> m_pasteboard; ///< connects while the others are made
    std::optional<std::shared_ptr<X11Connection>> m_x11;
    std::shared_ptr<X11Hotkeys> m_grabs;
};
