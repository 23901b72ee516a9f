#include "platform/wayland/PipeTransfers.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <csignal>

namespace {
/// Who lets this pass without taking anything has given up.
constexpr std::chrono::seconds longestStall{10};
} // namespace

PipeTransfers::PipeTransfers() {
    sigset_t pipe;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
}

void PipeTransfers::begin(Descriptor pipe, const QByteArray &data) {
    const int flags = fcntl(pipe.number(), F_GETFL);
    if (flags < 0 || fcntl(pipe.number(), F_SETFL, flags | O_NONBLOCK) < 0)
        return;
    m_lastSign = Clock::now();
    Transfer transfer{std::move(pipe), data, 0, m_lastSign};
    if (send(transfer))
        m_transfers.push_back(std::move(transfer));
}

bool PipeTransfers::send(Transfer &transfer) {
    while (transfer.sent < transfer.data.size()) {
        const ssize_t size =
            write(transfer.pipe.number(), transfer.data.constData() + transfer.sent,
                  std::size_t(transfer.data.size() - transfer.sent));
        if (size < 0 && errno == EINTR)
            continue;
        if (size < 0)
            return errno == EAGAIN && Clock::now() - transfer.lastSign < longestStall;
        transfer.sent += size;
        transfer.lastSign = m_lastSign = Clock::now();
    }
    return false;
}

void PipeTransfers::appendWanted(std::vector<pollfd> &wanted) const {
    for (const Transfer &transfer : m_transfers)
        wanted.push_back({transfer.pipe.number(), POLLOUT, 0});
}

int PipeTransfers::timeout() const {
    if (m_transfers.empty())
        return -1;
    auto oldest = Clock::time_point::max();
    for (const Transfer &transfer : m_transfers)
        oldest = std::min(oldest, transfer.lastSign);
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(oldest + longestStall - Clock::now());
    return std::max(0, static_cast<int>(left.count()));
}

bool PipeTransfers::serve() {
    return m_transfers.remove_if([this](Transfer &transfer) { return !send(transfer); }) > 0;
}
