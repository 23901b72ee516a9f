#pragma once

#include "platform/Pasteboard.h"
#include "platform/linux/ServingThread.h"

/// A desktop's clipboard as the thread that serves it sees it. All on that thread.
class ClipboardServer : public ServingThread::Connection {
public:
    /// Why it can't be used; empty when it can.
    virtual QString problem() const = 0;

    /// Everything on the clipboard, with deadlines for owners that do not answer. Others who ask
    /// for what we own are answered meanwhile.
    virtual ClipboardContents read() = 0;

    /// Takes the clipboard with `contents`; nothing when it was not to be had or, with `ifCountIs`,
    /// somebody has changed it since that count.
    virtual std::optional<PasteboardWrite> own(const PasteboardItem &contents,
                                               std::optional<qint64> ifCountIs) = 0;

    /// Whether the clipboard still holds what we wrote last.
    virtual bool holdsOurs() = 0;

    /// Gives what we own to whoever keeps it beyond our end, if somebody does. Bounded in time.
    virtual void handOver() = 0;
};
