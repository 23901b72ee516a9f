#pragma once

/// One run: from what is on the clipboard to the titled link.
namespace Enrichment {

/// Turns the reference on the clipboard into a titled link on the clipboard and, with `pasteAfter`,
/// pastes it into the application in front. Returns at once; every outcome is told to the user.
/// Main thread.
void run(bool pasteAfter);

} // namespace Enrichment
