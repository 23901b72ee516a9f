#pragma once

#include <chrono>
#include <functional>

/// Whether what is typed now goes to a place that is none of ours: a program that holds the
/// keyboard for itself (password prompts), a password field in focus, a locked screen. Main thread
/// only. No call waits for another program but the display server.
class SecureInput {
public:
    enum class Answer {
        No,
        Yes,
        Unknown, ///< nobody answered in time
    };

    virtual ~SecureInput() = default;

    /// `done` is called once, on the main thread, perhaps before the call returns, and `deadline`
    /// after the call at the latest.
    virtual void check(std::chrono::milliseconds deadline, std::function<void(Answer)> done) = 0;
};
