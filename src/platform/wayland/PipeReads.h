#pragma once

#include "platform/wayland/Descriptor.h"

#include <QByteArray>

#include <poll.h>

#include <chrono>
#include <optional>
#include <vector>

/// Flavours on their way to us, each in a pipe of its own, all at the same time.
class PipeReads {
public:
    using Clock = std::chrono::steady_clock;

    /// An owner that lets this pass without a byte counts as hung.
    static constexpr std::chrono::milliseconds longestSilence{1000};
    /// The most that one flavour may take, however lively the owner drips.
    static constexpr std::chrono::milliseconds longestRead{5000};
    /// The most that is taken of one flavour; more counts as not given.
    static constexpr qsizetype largestData = qsizetype{256} * 1024 * 1024;

    /// Begins a read; returns the end of the pipe to write into, without a number when there is
    /// none to be had.
    Descriptor begin();

    void appendWanted(std::vector<pollfd> &wanted) const;
    /// Takes what is there. Never waits.
    void serve();
    /// No more will come.
    void abandon();

    /// Whether each is read, or given up.
    bool isFinished() const;
    /// When the last of them will be given up, unless there is a sign of life before.
    Clock::time_point deadline() const;

    /// What came, in the order of begin(); nothing for what did not come to its end. Starts afresh.
    std::vector<std::optional<QByteArray>> take();

private:
    struct Read {
        Descriptor pipe; ///< none: over
        QByteArray data;
        bool isWhole = false;
        Clock::time_point begun;
        Clock::time_point lastSign;

        Clock::time_point deadline() const;
        void end(bool isWhole);
    };

    static void takeFrom(Read &read);

    std::vector<Read> m_reads;
};
