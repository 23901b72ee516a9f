#pragma once

#include "app/Diagnosis.h"

#include <functional>

/// Looks at every capability of the desktop that Brindle uses, without asking the user for anything
/// and without touching what is copied. Main thread only.
namespace Doctor {

struct Circumstances {
    bool isRunningInstance = false; ///< which has the hotkeys bound already
    bool network = false;           ///< the two hosts may be contacted
};

/// All looks at once. `done` is called once, seven seconds after the call at the latest.
void examine(const Circumstances &circumstances, std::function<void(const Diagnosis &)> done);

/// One look; it tells once, later or at once.
using Tell = std::function<void(const Finding &)>;

void lookAtSession(const Tell &tell);
void lookAtClipboard(const Tell &tell);
void lookAtHotkey(const Circumstances &circumstances, const Tell &tell);
void lookAtPasteKeys(const Tell &tell);
void lookAtFrontWindow(const Tell &tell);
void lookAtSecureInput(const Tell &tell);
void lookAtTray(const Tell &tell);
void lookAtNotifications(const Tell &tell);
void lookAtKeyring(const Tell &tell);
void lookAtLoginItem(const Tell &tell);
void lookAtSettings(const Tell &tell);
void lookAtGateway(const Tell &tell);
void lookAtSite(const Tell &tell);

} // namespace Doctor
