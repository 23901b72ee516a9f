#include "platform/wayland/PipeReads.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cerrno>

Descriptor PipeReads::begin() {
    const auto now = Clock::now();
    std::array<int, 2> ends{-1, -1};
    // Only our end never waits: who writes into the other may not be prepared for that.
    const bool isMade = pipe2(ends.data(), O_CLOEXEC) == 0 &&
                        fcntl(ends[0], F_SETFL, O_NONBLOCK) == 0; // it has no other flags
    m_reads.push_back({Descriptor(ends[0]), {}, false, now, now});
    if (!isMade)
        m_reads.back().end(false);
    return Descriptor(ends[1]);
}

PipeReads::Clock::time_point PipeReads::Read::deadline() const {
    return std::min(begun + longestRead, lastSign + longestSilence);
}

void PipeReads::Read::end(bool whole) {
    pipe = Descriptor();
    isWhole = whole;
    if (isWhole)
        data.squeeze();
    else
        data = {};
}

void PipeReads::appendWanted(std::vector<pollfd> &wanted) const {
    for (const Read &read : m_reads) {
        if (read.pipe.number() >= 0)
            wanted.push_back({read.pipe.number(), POLLIN, 0});
    }
}

void PipeReads::serve() {
    for (Read &read : m_reads) {
        if (read.pipe.number() >= 0)
            takeFrom(read);
        if (read.pipe.number() >= 0 && Clock::now() >= read.deadline())
            read.end(false);
    }
}

void PipeReads::takeFrom(Read &read) {
    static thread_local std::array<char, std::size_t{64} * 1024> piece; // as much as a pipe holds
    // A bounded number of them, so that one that never dries up does not starve the others.
    constexpr int mostPieces = 16;
    for (int times = 0; times < mostPieces; ++times) {
        const ssize_t size = ::read(read.pipe.number(), piece.data(), piece.size());
        if (size < 0) {
            if (errno != EAGAIN && errno != EINTR)
                read.end(false);
            return;
        }
        if (size == 0 || read.data.size() + size > largestData) {
            read.end(size == 0);
            return;
        }
        read.data.append(piece.data(), size);
        read.lastSign = Clock::now();
    }
}

void PipeReads::abandon() {
    for (Read &read : m_reads) {
        if (read.pipe.number() >= 0)
            read.end(false);
    }
}

bool PipeReads::isFinished() const {
    return std::all_of(m_reads.begin(), m_reads.end(),
                       [](const Read &read) { return read.pipe.number() < 0; });
}

PipeReads::Clock::time_point PipeReads::deadline() const {
    auto latest = Clock::time_point::min();
    for (const Read &read : m_reads) {
        if (read.pipe.number() >= 0)
            latest = std::max(latest, read.deadline());
    }
    return latest;
}

std::vector<std::optional<QByteArray>> PipeReads::take() {
    std::vector<std::optional<QByteArray>> all;
    for (Read &read : std::exchange(m_reads, {}))
        all.push_back(read.isWhole ? std::optional(std::move(read.data)) : std::nullopt);
    return all;
}
