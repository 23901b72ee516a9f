#pragma once

#include "stage/DesktopHome.h"
#include "stage/DesktopOptions.h"
#include "stage/Screen.h"
#include "stage/XConnection.h"

#include <QTimer>

/// An X server with a window manager, inside another one if asked for a physical keyboard. The
/// window manager is openbox, or what the shell makes of BRINDLE_STAGE_WINDOW_MANAGER.
class XScreen : public Screen {
public:
    XScreen(DesktopHome &home, const DesktopOptions &options);

    QString display() const override { return m_display; }
    QString keyboardDisplay() const override { return m_outerDisplay; }
    void awaitReady() override;

private:
    QString beginDisplay(const QString &program, const QStringList &arguments);
    void beginWindowManager();
    void keepAwake();

    DesktopHome &m_home;
    std::unique_ptr<XConnection> m_inner; ///< only with a display inside another one
    QTimer m_awake;
    QString m_display, m_outerDisplay, m_windowManager;
};
