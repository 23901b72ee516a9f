#pragma once

#include "stage/DesktopHome.h"
#include "stage/DesktopOptions.h"
#include "stage/Screen.h"

/// labwc without hardware, with XWayland and a keyboard. Its one binding is what the preferences
/// tell a user to write into its configuration.
class LabwcCompositor : public Screen {
public:
    LabwcCompositor(DesktopHome &home, const DesktopOptions &options);

    QString display() const override { return m_display; }
    StageProcess *keyboard() const override { return m_keyboard; }

private:
    QString m_display;
    StageProcess *m_keyboard = nullptr;
};
