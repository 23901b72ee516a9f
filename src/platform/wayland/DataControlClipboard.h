#pragma once

#include "platform/linux/ChangeCount.h"
#include "platform/linux/ThreadedPasteboard.h"
#include "platform/wayland/DataControl.h"
#include "platform/wayland/PipeReads.h"
#include "platform/wayland/PipeTransfers.h"

/// The clipboard of the seat that has a keyboard, as a clipboard of one item.
class DataControlClipboard : public ClipboardServer {
public:
    DataControlClipboard(int interrupt, ThreadedPasteboard::News news);

    QString problem() const override;
    ClipboardContents read() override;
    std::optional<PasteboardWrite> own(const PasteboardItem &contents,
                                       std::optional<qint64> ifCountIs) override;
    bool holdsOurs() override;
    void handOver() override;

    int prepare(std::vector<pollfd> &wanted) override;
    void serve(const pollfd *ready) override;

private:
    bool isOwner() const { return m_control && m_control->isOwner(); }
    void followSeats();
    bool catchUp();
    std::optional<PasteboardItem>
    readOffered(const std::function<bool(const QByteArray &)> &isWanted);
    void settleCount();
    WaylandConnection::Along along();
    void tell();

    ThreadedPasteboard::News m_news;
    WaylandConnection m_wayland;
    wl_seat *m_seat = nullptr; ///< the one that m_control is for; only to compare
    std::unique_ptr<DataControl> m_control;
    PipeReads m_reads;
    PipeTransfers m_transfers;
    ChangeCount m_count;
    PasteboardItem m_contents; ///< of our last write
    std::optional<Dispatch::Clock::time_point> m_latestFetch;
    Dispatch::Clock::time_point m_lastOwned;
};
