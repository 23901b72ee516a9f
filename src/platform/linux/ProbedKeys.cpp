#include "platform/linux/ProbedKeys.h"

#include <utility>

namespace {

/// How long a user may go on holding the hotkey.
constexpr std::chrono::milliseconds longestHold{2000};

/// Between two taps. One is answered within about this time.
constexpr std::chrono::milliseconds between{30};

} // namespace

ProbedKeys::ProbedKeys(std::shared_ptr<KeyProbe> probe, std::shared_ptr<Dispatch> dispatch)
    : m_probe(std::move(probe)), m_dispatch(std::move(dispatch)) {
    m_probe->isWanted = true;
    m_probe->fired = [this] {
        if (m_areUp)
            finish();
    };
}

ProbedKeys::~ProbedKeys() {
    m_probe->isWanted = false;
    m_probe->fired = nullptr;
    m_next.cancel();
}

void ProbedKeys::await(const std::function<void(int)> &tap, std::function<void()> areUp) {
    m_tap = tap;
    m_areUp = std::move(areUp);
    m_deadline = m_dispatch->now() + longestHold;
    tapAgain();
}

void ProbedKeys::tapAgain() {
    m_next.cancel();
    if (!m_probe->isBound || m_dispatch->now() >= m_deadline) {
        finish();
        return;
    }
    m_next = m_dispatch->after(between, [this] { tapAgain(); });
    m_tap(KeyProbe::evdevCode);
}

void ProbedKeys::finish() {
    m_next.cancel();
    m_tap = nullptr;
    const auto areUp = std::exchange(m_areUp, nullptr); // it may ask again
    areUp();
}
