#pragma once

#include "platform/Dispatch.h"

#include <chrono>

/// Gives the user's clipboard back after a paste. Idle, armed (snapshot held), delivering (a paste
/// is under way), restore scheduled, idle again. All state is static; main thread only.
class ClipboardRestorer {
public:
    ClipboardRestorer() = delete;

    /// From a successful paste to the restore.
    static constexpr std::chrono::milliseconds window{500};

    /// The most that the window grows while the application pasted into has not fetched the link: a
    /// busy one would otherwise paste what was restored.
    static constexpr std::chrono::milliseconds longestWindow{2000};

    /// Whether a paste is being delivered and its restore is pending.
    static bool isDelivering();

    /// Takes the snapshot, to be called before the clipboard is overwritten. Calls off a scheduled
    /// restore; a snapshot still pending is kept, since it holds what the user really had copied.
    static void arm();

    static void markDelivering();

    /// Schedules the restore. It happens only if the change count then is still
    /// `expectedChangeCount`. `pastedAt` is the time of the keystroke.
    static void commit(qint64 expectedChangeCount, Dispatch::Clock::time_point pastedAt);

    /// Drops any pending restore and clears the flag.
    static void abandon();

    /// Does a scheduled restore at once, because the program is about to quit.
    static void finishNow();
};
