#include "platform/linux/KeyProbe.h"

#include <utility>

namespace {

/// How long a user may go on holding the hotkey.
constexpr std::chrono::milliseconds longestHold{2000};

/// Between two taps. A tap is answered within this time or a little more.
constexpr std::chrono::milliseconds between{30};

} // namespace

const QString KeyProbe::accelerator = QStringLiteral("XF86Launch9");

KeyProbe::KeyProbe(std::shared_ptr<Dispatch> dispatch) : m_dispatch(std::move(dispatch)) {}

KeyProbe::~KeyProbe() {
    m_next.cancel();
}

void KeyProbe::disarm() {
    m_isArmed = false;
    if (m_areUp)
        finish();
}

void KeyProbe::await(const std::function<void(int)> &tap, std::function<void()> areUp) {
    m_tap = tap;
    m_areUp = std::move(areUp);
    m_deadline = m_dispatch->now() + longestHold;
    if (m_isArmed)
        tapAgain();
    else
        finish();
}

void KeyProbe::tapAgain() {
    if (m_dispatch->now() >= m_deadline) {
        finish();
        return;
    }
    m_next.cancel();
    m_next = m_dispatch->after(between, [this] { tapAgain(); });
    m_tap(evdevCode);
}

void KeyProbe::answered() {
    if (m_areUp)
        finish();
}

void KeyProbe::finish() {
    m_next.cancel();
    m_tap = nullptr;
    const auto areUp = std::exchange(m_areUp, nullptr); // it may ask again
    areUp();
}
