#pragma once

#include "platform/Dispatch.h"

#include <QString>

#include <functional>

/// Pasting into the application in front by pressing its paste keys.
namespace Pasting {

/// The key that types "v" on the ANSI US layout.
constexpr quint16 fallbackKeyCode = 9;

/// From the link being on the clipboard to the keystroke.
constexpr std::chrono::milliseconds pause{50};

/// How a paste went. `error` is a text for the user when `ok` is false; `at` is the time from which
/// on the application may fetch the link.
struct Outcome {
    bool ok = false;
    QString error;
    Dispatch::Clock::time_point at;
};

/// The virtual key code of the lowest key that types "v" in the layout in force, or the fallback.
/// Main thread only.
quint16 resolveVKeyCode();

/// Waits until `pause` after `start` and until the user's keys do no harm, then presses the paste
/// keys of the application in front, with `vKey` as their letter; where that is not possible, lets
/// another program press them. Main thread only; returns at once.
void simulateCommandV(quint16 vKey, Dispatch::Clock::time_point start,
                      std::function<void(const Outcome &)> done);

} // namespace Pasting
