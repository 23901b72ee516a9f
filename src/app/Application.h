#pragma once

#include "app/AppWindow.h"
#include "app/ApplicationService.h"
#include "app/StatusItem.h"
#include "desktop/AppDelegate.h"
#include "platform/Dispatch.h"

#include <memory>

/// The running application: where the rooms meet. Main thread only.
class Application : public QObject, public AppDelegate {
    Q_OBJECT

public:
    Application();
    ~Application() override;

    /// Whether this is the only instance. If not, the other one was told to show itself, and this
    /// one is to end.
    ApplicationService::Claim claim() { return m_service.claim(); }

    /// The launch sequence; the event loop is started by the caller.
    void finishLaunching();

    void openPreferences() override;
    void refreshStatusItemImage() override;
    void reinstallHotkey() override;

private:
    void installHotkey();
    void openLogs();
    void showAbout();
    void checkForUpdates();
    void askForMissingCredentials();
    static void tellWhereItIsWithoutTray();
    AppWindow::MenuActions menuActions();

    ApplicationService m_service;
    std::unique_ptr<StatusItem> m_statusItem;
    WorkItem m_trayPatience;
    std::unique_ptr<AppWindow> m_preferencesWindow; ///< made when first opened, then kept
    std::unique_ptr<AppWindow> m_logsWindow;        ///< likewise
};
