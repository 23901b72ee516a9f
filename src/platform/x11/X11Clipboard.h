#pragma once

#include "platform/linux/ChangeCount.h"
#include "platform/linux/ThreadedPasteboard.h"
#include "platform/x11/X11SelectionOwner.h"
#include "platform/x11/X11SelectionReader.h"

#include <memory>

/// The selection CLIPBOARD, as a clipboard of one item.
class X11Clipboard : public ClipboardServer {
public:
    X11Clipboard(int interrupt, ThreadedPasteboard::News news);

    QString problem() const override;
    ClipboardContents read() override;
    std::optional<PasteboardWrite> own(const PasteboardItem &contents,
                                       std::optional<qint64> ifCountIs) override;
    bool holdsOurs() override;
    void handOver() override;

    int prepare(std::vector<pollfd> &wanted) override;
    void serve(const pollfd *ready) override;

private:
    void ownerChanged(const xcb_xfixes_selection_notify_event_t &event);

    X11Connection m_x11;
    std::unique_ptr<X11SelectionOwner> m_owner;
    std::unique_ptr<X11SelectionReader> m_reader;
    ChangeCount m_count;
};
