#pragma once

#include <functional>

/// The application in front, where the desktop tells. Main thread only. No call waits for another
/// program but the display server.
class FrontWindow {
public:
    enum class Kind {
        Application,
        Terminal, ///< Ctrl+V is a character for the shell there; the paste keys are Ctrl+Shift+V
        Unknown,
    };

    virtual ~FrontWindow() = default;

    /// `done` is called once, on the main thread, perhaps before the call returns.
    virtual void find(std::function<void(Kind)> done) = 0;
};
