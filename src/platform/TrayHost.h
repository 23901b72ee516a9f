#pragma once

#include <functional>

/// Whether something on the desktop shows status icons. Main thread only.
class TrayHost {
public:
    virtual ~TrayHost() = default;

    virtual bool isAvailable() = 0;

    /// `changed` is called whenever a host comes or goes.
    virtual void onChange(std::function<void()> changed) = 0;
};
