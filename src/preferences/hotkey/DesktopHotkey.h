#pragma once

#include "platform/Hotkeys.h"

#include <QWidget>

class Button;
class Caption;
class WrappingText;

/// Takes the place of the recorders where the hotkey is not ours to choose: what the user can do,
/// the line to put into the desktop's configuration with a button that copies it, and a button that
/// leads to the desktop's own settings where it has any. Main thread only.
class DesktopHotkey : public QWidget {
    Q_OBJECT

public:
    /// What there is to tell now; nothing where the hotkeys are ours to choose.
    static std::optional<Hotkeys::DesktopsChoice> choice();

    explicit DesktopHotkey(QWidget *parent = nullptr);

    void setChoice(const Hotkeys::DesktopsChoice &choice);

private:
    void copyLine();

    Hotkeys::DesktopsChoice m_choice;
    Caption *m_text = nullptr;
    WrappingText *m_line = nullptr;
    Button *m_copy = nullptr;
    Button *m_openSettings = nullptr;
};
