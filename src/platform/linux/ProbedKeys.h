#pragma once

#include "platform/Dispatch.h"
#include "platform/linux/HeldKeys.h"
#include "platform/linux/HotkeyHold.h"
#include "platform/linux/KeyProbe.h"

#include <memory>
#include <optional>

/// Takes the keys for up when the probe fires, which is tapped until then: while a modifier is held
/// the desktop takes the tap for another combination, which nothing uses. Waits for nothing where
/// the probe is not bound, and for two seconds at most. The probe knows of modifiers only: where
/// the hotkey was held, its letter may come up a moment after them.
class ProbedKeys : public HeldKeys {
public:
    /// `hold` tells of the hotkey, where the desktop tells.
    ProbedKeys(std::shared_ptr<KeyProbe> probe, std::shared_ptr<const HotkeyHold> hold,
               std::shared_ptr<Dispatch> dispatch);
    ~ProbedKeys() override;

    void await(const std::function<void(int evdevCode)> &tap, std::function<void()> areUp) override;

private:
    void tapAgain();
    void fired();
    void finish();

    std::shared_ptr<KeyProbe> m_probe;
    std::shared_ptr<const HotkeyHold> m_hold;
    std::shared_ptr<Dispatch> m_dispatch;
    std::function<void(int)> m_tap;
    std::function<void()> m_areUp;
    int m_taps = 0;
    std::optional<Dispatch::Clock::time_point> m_latestTap;
    Dispatch::Clock::time_point m_deadline;
    WorkItem m_next;
};
