#pragma once

#include "platform/SecureInput.h"

/// Whether the screen is locked, as the session's screen saver (org.freedesktop.ScreenSaver,
/// org.gnome.ScreenSaver) or the login manager (logind's LockedHint) tells. Starts none of them.
class SessionLock : public SecureInput {
public:
    void check(std::chrono::milliseconds deadline, std::function<void(Answer)> done) override;
};
