#pragma once

#include "platform/Pasteboard.h"

#include <QString>

namespace Enrichment {

/// The last step of a run, once the link is on the clipboard: tells the user so, or pastes it and
/// schedules the restore of the user's clipboard. `notifyText` is the link as plain text, `written`
/// what the write came to. Main thread; returns at once.
void deliverPaste(const QString &notifyText, bool pasteAfter, const PasteboardWrite &written);

/// Explains, in a later turn of the main thread, why pasting is not permitted. Any thread.
void showAccessibilityAlert(const QString &detail);

} // namespace Enrichment
