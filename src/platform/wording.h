#pragma once

#include <QString>

/// The few words of user-facing texts that name things a desktop has or has not. Texts are written
/// once and take these words from here.
struct Wording {
    QString system;          ///< who blocks a paste
    QString computer;        ///< the machine
    QString pasteKeys;       ///< the paste combination as the user presses it
    QString emojiPickerKeys; ///< what opens the emoji picker

    /// A hotkey as the user's keyboard is labelled.
    QString (*describeHotkey)(quint32 keyCode, quint32 modifiers);
};

/// The words of a Mac.
Wording macWording();

/// The words of a Linux desktop.
Wording linuxWording();

/// The words in force: the Linux set, unless a test chose another.
const Wording &wording();
void setWording(const Wording &words);
