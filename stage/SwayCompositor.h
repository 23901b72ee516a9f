#pragma once

#include "stage/DesktopHome.h"
#include "stage/DesktopOptions.h"
#include "stage/Screen.h"

/// sway without hardware, with XWayland and a keyboard. Its one binding, on
/// Super+Return, does nothing.
class SwayCompositor : public Screen {
public:
    SwayCompositor(DesktopHome &home, const DesktopOptions &options);

    QString display() const override { return m_display; }
    StageProcess *keyboard() const override { return m_keyboard; }

private:
    QString m_display;
    StageProcess *m_keyboard = nullptr;
};
