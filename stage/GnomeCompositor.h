#pragma once

#include "stage/DesktopHome.h"
#include "stage/DesktopOptions.h"
#include "stage/Screen.h"

/// GNOME Shell without hardware, with XWayland, a keyboard, the settings and the daemon that serves
/// key bindings. Needs the bus.
class GnomeCompositor : public Screen {
public:
    GnomeCompositor(DesktopHome &home, const DesktopOptions &options);
    ~GnomeCompositor() override;

    /// Why there is none on this machine; empty where it can be started.
    static QString missing();

    QString display() const override { return m_display; }
    StageProcess *keyboard() const override { return m_keyboard; }

private:
    static void beginSettings(DesktopHome &home, const DesktopOptions &options);
    bool beginShell(DesktopHome &home);
    void beginKeyboard(DesktopHome &home);

    QString m_display;
    StageProcess *m_shell = nullptr;
    StageProcess *m_keyboard = nullptr;
};
