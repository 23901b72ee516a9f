#pragma once

#include <QString>

/// Starting Brindle at login. Main thread only.
class LoginItems {
public:
    enum class Status {
        NotRegistered = 0,
        Enabled = 1,
        RequiresApproval = 2, ///< registered, but switched off by the desktop's own means
        NotFound = 3,         ///< registered for a program that is gone
    };

    virtual ~LoginItems() = default;

    virtual Status status() = 0;

    /// Registers and unregisters; the reason when that failed, else an empty text.
    virtual QString add() = 0;
    virtual QString remove() = 0;
};
