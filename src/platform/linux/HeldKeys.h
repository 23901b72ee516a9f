#pragma once

#include <functional>

/// A way to find out when the keys that the user holds would not get into the way of a paste, where
/// held and pressed keys are those of one keyboard to the desktop. Main thread.
class HeldKeys {
public:
    virtual ~HeldKeys() = default;

    /// Calls `areUp` once, when they are or when it has waited long enough, perhaps before it
    /// returns; only for the latest call. `tap` taps a key, by the kernel's code, as the paste keys
    /// will be pressed; it may be used until then.
    virtual void await(const std::function<void(int evdevCode)> &tap,
                       std::function<void()> areUp) = 0;
};
