#include "platform/linux/ProbedKeys.h"

#include <algorithm>
#include <utility>

namespace {

/// How long a user may go on holding the hotkey.
constexpr std::chrono::milliseconds longestHold{2000};

/// Between two taps. One is answered within about this time.
constexpr std::chrono::milliseconds between{30};

/// So many taps are under way before the first can have been answered.
constexpr int mostUnanswered = 2;

/// A tap that is not answered by then won't be. One that is answered late, after an earlier one has
/// told that the keys are up, says nothing about the keys that are held for the next time.
constexpr std::chrono::milliseconds longestAnswer{500};

/// The fingers of a chord come up within this time.
constexpr std::chrono::milliseconds fingersApart{100};

} // namespace

ProbedKeys::ProbedKeys(std::shared_ptr<KeyProbe> probe, std::shared_ptr<const HotkeyHold> hold,
                       std::shared_ptr<Dispatch> dispatch)
    : m_probe(std::move(probe)), m_hold(std::move(hold)), m_dispatch(std::move(dispatch)) {
    m_probe->isWanted = true;
    m_probe->fired = [this] { fired(); };
}

ProbedKeys::~ProbedKeys() {
    m_probe->isWanted = false;
    m_probe->fired = nullptr;
    m_next.cancel();
}

void ProbedKeys::await(const std::function<void(int)> &tap, std::function<void()> areUp) {
    m_tap = tap;
    m_areUp = std::move(areUp);
    m_taps = 0;
    m_next.cancel();
    const auto now = m_dispatch->now();
    const auto begin = m_latestTap ? std::max(*m_latestTap + longestAnswer, now) : now;
    m_deadline = begin + longestHold;
    if (begin > now && m_probe->isBound)
        m_next = m_dispatch->at(begin, [this] { tapAgain(); });
    else
        tapAgain();
}

/// The letter that is still down could not be pressed for the paste.
void ProbedKeys::fired() {
    if (!m_areUp || m_taps == 0)
        return;
    m_next.cancel();
    m_tap = nullptr;
    if (m_hold->isHeld() || m_taps > mostUnanswered)
        m_next = m_dispatch->after(fingersApart, [this] { finish(); });
    else
        finish();
}

void ProbedKeys::tapAgain() {
    m_next.cancel();
    if (!m_probe->isBound || m_dispatch->now() >= m_deadline) {
        finish();
        return;
    }
    m_next = m_dispatch->after(between, [this] { tapAgain(); });
    ++m_taps;
    m_latestTap = m_dispatch->now();
    m_tap(KeyProbe::evdevCode);
}

void ProbedKeys::finish() {
    m_next.cancel();
    m_tap = nullptr;
    const auto areUp = std::exchange(m_areUp, nullptr); // it may ask again
    areUp();
}
