#pragma once

#include "platform/Dispatch.h"
#include "platform/SecureInput.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Hotkeys.h"

#include <memory>

/// Whether another client holds the keyboard, as password prompts and lock screens do.
class X11KeyboardGrab : public SecureInput {
public:
    X11KeyboardGrab(std::shared_ptr<X11Connection> x11, std::shared_ptr<X11Hotkeys> hotkeys,
                    std::shared_ptr<Dispatch> dispatch);
    ~X11KeyboardGrab() override;

    void check(std::chrono::milliseconds deadline, std::function<void(Answer)> done) override;

private:
    void lookAgain(Dispatch::Clock::time_point deadline, const std::function<void(Answer)> &done);
    Answer look() const;

    std::shared_ptr<X11Connection> m_x11;
    std::shared_ptr<X11Hotkeys> m_hotkeys;
    std::shared_ptr<Dispatch> m_dispatch;
    WorkItem m_nextLook;
};
