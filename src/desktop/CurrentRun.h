#pragma once

/// What the run is at. There is one run at a time, and one value that says so.
enum class RunPhase {
    Idle,
    Reading,           ///< the clipboard is read
    AskingKeyring,     ///< for the token
    WaitingForKeyring, ///< which waits for the user to unlock it
    Fetching,          ///< the title
    Writing,           ///< the link to the clipboard
    Delivering,        ///< until the paste keys are pressed
    WaitingToRestore,  ///< until the clipboard is given back
    Ended,             ///< the program is quitting; no run begins any more
};

/// The phase in force. Main thread only.
namespace CurrentRun {

RunPhase phase();

/// Moves on; the status icon follows. Ended is for good.
void enter(RunPhase phase);

/// Whether the link is on its way: read, asked for or fetched.
bool isGettingTheLink();

/// Whether the user waits for something outside of this computer's own speed: a fetch, or a keyring
/// that waits for its password.
bool isFetching();

/// Whether a paste is being delivered or its restore is pending.
bool isDelivering();

/// For tests: forgets that the program has ended.
void startAfresh();

} // namespace CurrentRun
