#pragma once

#include "platform/Pasteboard.h"

#include <QString>

/// A run that has passed the guards.
struct Run {
    bool pasteAfter = false;
    QString baseURL;
    /// What the user had copied, for giving it back. The texts are gone once they have been looked
    /// at.
    ClipboardContents original;

    /// Whether it may go on; told to the user when not. Where keys can't be pressed at all it goes
    /// on as one that only copies.
    bool mayGoOn();

    /// Ends the run, which has come to nothing; why has been told.
    static void giveUp();
    /// The same, and tells why.
    static void giveUp(const QString &logLine, const QString &message);

    /// Tells the user something.
    static void tell(const QString &message);
    static void openPreferences();
};
