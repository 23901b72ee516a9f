#pragma once

#include "platform/Dispatch.h"
#include "platform/linux/HeldKeys.h"
#include "platform/linux/HotkeyHold.h"

#include <memory>

/// Takes the keys for up a moment after the hotkey was let go of, or when it has been held for long
/// enough: where no more is told.
class HotkeyRelease : public HeldKeys {
public:
    HotkeyRelease(std::shared_ptr<const HotkeyHold> hold, std::shared_ptr<Dispatch> dispatch);
    ~HotkeyRelease() override;

    void await(const std::function<void(int evdevCode)> &tap, std::function<void()> areUp) override;

private:
    void lookAgain();

    std::shared_ptr<const HotkeyHold> m_hold;
    std::shared_ptr<Dispatch> m_dispatch;
    std::function<void()> m_areUp;
    Dispatch::Clock::time_point m_deadline;
    WorkItem m_nextLook;
};
