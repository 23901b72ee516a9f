#pragma once

#include <QString>

#include <functional>

/// What of the desktop Brindle can't reach, in words for the user. Main thread only.
namespace Access {

/// A sentence that says why the clipboard can't be reached; empty when it can.
QString clipboardProblem();

/// A sentence that says why nothing can be pasted for the user; empty when it can be, perhaps after
/// askForConsent().
QString pasteProblem();

/// The one line that says what is missing or waits for the user's consent; empty when all is well.
QString notice();

/// Whether pasting waits for the user's consent.
bool needsConsent();

/// The words of a button that has the desktop ask the user for it; empty where there is nothing to
/// ask.
QString consentOffer();

/// Has the desktop ask the user for it; what comes of it is logged. Only when the user has asked
/// for that.
void askForConsent(std::function<void()> done);

/// What the user is told where nothing keeps tokens.
QString keyringProblem();

/// What to do without a keyring, and without anything that shows the status icon.
QString withoutKeyring();
QString withoutTray();

} // namespace Access
