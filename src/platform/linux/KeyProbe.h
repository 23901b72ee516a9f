#pragma once

#include "platform/Dispatch.h"
#include "platform/linux/HeldKeys.h"

#include <QString>

#include <memory>

/// Finds out that no modifier is held where all keyboards share one state and nobody tells it: taps
/// a key that is a shortcut of ours without modifiers. While one is held the desktop takes it for
/// another combination, which nothing uses, and the shortcut does not answer.
class KeyProbe : public HeldKeys {
public:
    explicit KeyProbe(std::shared_ptr<Dispatch> dispatch);
    ~KeyProbe() override;

    /// The key, which must be in the user's keymap: as GNOME's settings write it and as the kernel
    /// counts it.
    static const QString accelerator;
    static constexpr int evdevCode = 188;

    /// The shortcut is bound; without it await() does not wait.
    void arm() { m_isArmed = true; }
    void disarm();
    /// The shortcut was pressed.
    void answered();

    void await(const std::function<void(int evdevCode)> &tap, std::function<void()> areUp) override;

private:
    void tapAgain();
    void finish();

    std::shared_ptr<Dispatch> m_dispatch;
    bool m_isArmed = false;
    std::function<void(int)> m_tap;
    std::function<void()> m_areUp;
    Dispatch::Clock::time_point m_deadline;
    WorkItem m_next;
};
