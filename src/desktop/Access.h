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

/// Whether pasting waits for the user's consent.
bool needsConsent();

/// The words of a button that has the desktop ask the user for it; empty where there is nothing to
/// ask.
QString consentOffer();

/// Has the desktop ask the user for it; what comes of it is logged. Only when the user has asked
/// for that.
void askForConsent(std::function<void()> done);

} // namespace Access
