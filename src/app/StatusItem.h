#pragma once

#include "app/StatusIcon.h"

#include <QAction>
#include <QMenu>
#include <QString>
#include <QSystemTrayIcon>

#include <functional>
#include <memory>

/// The icon in the status area and its menu. The icon appears when the desktop has a place for it
/// and comes back with it; everything else works without. Main thread only.
class StatusItem : public QObject {
    Q_OBJECT

public:
    /// What the entries of the menu do.
    struct Actions {
        std::function<void()> enrichAndPaste;
        std::function<void()> enrichOnly;
        std::function<void()> openPreferences;
        std::function<void()> openLogs;
        std::function<void()> showAbout;
        std::function<void()> checkForUpdates;
        std::function<void()> quit;
    };

    explicit StatusItem(const Actions &actions);

    /// Shows the primary hotkey, as the user reads it, in the menu; nothing of it when empty.
    void setHotkey(const QString &hotkey);

    /// Draws the icon, dimmed while `isFetching`, with a badge while the token is aging.
    void refreshImage(bool tokenIsAging, bool isFetching);

private:
    QAction *add(const QString &title, std::function<void()> action,
                 const QKeySequence &shortcut = {});
    void followHost();
    void refreshNotice();
    void show();

    QMenu m_menu;
    QAction *m_notice; ///< what of the desktop is missing; hidden when all is well
    QAction *m_underNotice;
    QAction *m_enrichAndPaste;
    StatusIcon m_pictures;
    bool m_tokenIsAging = false;
    bool m_isFetching = false;
    std::unique_ptr<QSystemTrayIcon> m_trayIcon;
};
