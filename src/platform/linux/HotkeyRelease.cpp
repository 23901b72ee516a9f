#include "platform/linux/HotkeyRelease.h"

#include <algorithm>
#include <utility>

namespace {

/// How long a user may go on holding the hotkey.
constexpr std::chrono::milliseconds longestHold{1000};

/// Between two looks at the hotkey while it is held.
constexpr std::chrono::milliseconds holdPoll{3};

/// The fingers of a chord come up within this time of the first.
constexpr std::chrono::milliseconds fingersApart{50};

} // namespace

HotkeyRelease::HotkeyRelease(std::shared_ptr<const HotkeyHold> hold,
                             std::shared_ptr<Dispatch> dispatch)
    : m_hold(std::move(hold)), m_dispatch(std::move(dispatch)) {}

HotkeyRelease::~HotkeyRelease() {
    m_nextLook.cancel();
}

void HotkeyRelease::await(const std::function<void(int)> &, std::function<void()> areUp) {
    m_nextLook.cancel();
    m_areUp = std::move(areUp);
    m_deadline = m_dispatch->now() + longestHold;
    lookAgain();
}

void HotkeyRelease::lookAgain() {
    const auto now = m_dispatch->now();
    const auto allUp = m_hold->isHeld() ? m_deadline : m_hold->lastRelease() + fingersApart;
    if (now < std::min(allUp, m_deadline)) {
        m_nextLook = m_dispatch->after(holdPoll, [this] { lookAgain(); });
        return;
    }
    m_nextLook.cancel();
    const auto areUp = std::exchange(m_areUp, nullptr); // it may ask again
    areUp();
}
