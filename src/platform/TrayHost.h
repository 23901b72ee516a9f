#pragma once

#include <functional>
#include <optional>

/// Whether something on the desktop shows status icons. Main thread only. No call waits for another
/// program but the display server.
class TrayHost {
public:
    virtual ~TrayHost() = default;

    /// As far as is known now; nothing until the desktop has been asked, see onChange().
    virtual std::optional<bool> isAvailable() const = 0;

    /// Begins to ask. `changed` is called, perhaps before the call returns, when the answer is
    /// known, and whenever it changes.
    virtual void onChange(std::function<void()> changed) = 0;
};
