#pragma once

#include <chrono>

/// Whether a hotkey is held, by what a desktop tells that repeats the press of a held key. Main
/// thread.
class HotkeyHold {
public:
    using Clock = std::chrono::steady_clock;

    /// A key that is held repeats at shorter intervals than `longestRepeatDelay`. A press after a
    /// longer one is a new press, even if the release between was not told.
    explicit HotkeyHold(
        std::chrono::milliseconds longestRepeatDelay = std::chrono::milliseconds(2500))
        : m_longestRepeatDelay(longestRepeatDelay) {}

    /// A press was told; false if it only repeats the one before.
    bool press() {
        const auto now = Clock::now();
        const bool isRepeat = m_isHeld && now - m_lastPress < m_longestRepeatDelay;
        m_lastPress = now;
        m_isHeld = true;
        return !isRepeat;
    }

    /// A release was told; false if nothing was held.
    bool release() {
        if (!m_isHeld)
            return false;
        m_isHeld = false;
        m_lastRelease = Clock::now();
        return true;
    }

    bool isHeld() const { return m_isHeld && Clock::now() - m_lastPress < m_longestRepeatDelay; }
    /// When it was let go of last.
    Clock::time_point lastRelease() const { return m_lastRelease; }

private:
    std::chrono::milliseconds m_longestRepeatDelay;
    bool m_isHeld = false;
    Clock::time_point m_lastPress;
    Clock::time_point m_lastRelease;
};
