#pragma once

#include "platform/Pasteboard.h"

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

    /// Keeps what was on the clipboard, to be called before it is overwritten. Calls off a
    /// scheduled restore; a snapshot still pending is kept, since it holds what the user really had
    /// copied.
    static void arm(const ClipboardContents &contents);

    /// Drops the snapshot of arm(): the clipboard was not overwritten after all.
    static void disarm();

    static void markDelivering();

    /// Schedules the restore. It happens only if the change count then is still
    /// `expectedChangeCount`. `pastedAt` is the time of the keystroke.
    static void commit(qint64 expectedChangeCount, Dispatch::Clock::time_point pastedAt);

    /// Drops any pending restore and ends the run.
    static void abandon();

    /// The end of the program: gives the clipboard back at once if a restore is pending or armed,
    /// and hands it over to whoever keeps it beyond our end.
    static void finishNow();
};
