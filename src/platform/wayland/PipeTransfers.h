#pragma once

#include "platform/wayland/Descriptor.h"

#include <QByteArray>

#include <poll.h>

#include <chrono>
#include <list>
#include <vector>

/// Data on its way into the pipes of those who asked for it. Nothing waits for them.
class PipeTransfers {
public:
    using Clock = std::chrono::steady_clock;

    /// Blocks SIGPIPE for the calling thread, which must be the one that uses this: who asks for
    /// data may go before it has come.
    PipeTransfers();

    /// Sends `data`, as much at once as fits.
    void begin(Descriptor pipe, const QByteArray &data);

    bool isEmpty() const { return m_transfers.empty(); }
    /// When a piece was last taken, or a transfer begun.
    Clock::time_point lastSign() const { return m_lastSign; }

    void appendWanted(std::vector<pollfd> &wanted) const;
    /// Milliseconds after which to serve() in any case; -1: not at all.
    int timeout() const;
    /// Sends on. True when a transfer has ended.
    bool serve();

private:
    struct Transfer {
        Descriptor pipe;
        QByteArray data; ///< kept, so that it ends well even after the clipboard has changed
        qsizetype sent = 0;
        Clock::time_point lastSign;
    };

    /// False when it is over.
    bool send(Transfer &transfer);

    std::list<Transfer> m_transfers;
    Clock::time_point m_lastSign;
};
