#include "app/StatusItem.h"

#include "desktop/Access.h"
#include "platform/Platform.h"

#include <QCursor>

StatusItem::StatusItem(const Actions &actions) {
    m_notice = add({}, actions.openPreferences);
    m_underNotice = m_menu.addSeparator();
    m_enrichAndPaste = add({}, actions.enrichAndPaste);
    add(QStringLiteral("Enrich Clipboard Only"), actions.enrichOnly);
    m_menu.addSeparator();
    add(QStringLiteral("Preferences…"), actions.openPreferences,
        QKeySequence(QStringLiteral("Ctrl+,")));
    add(QStringLiteral("View Logs…"), actions.openLogs, QKeySequence(QStringLiteral("Ctrl+L")));
    m_menu.addSeparator();
    add(QStringLiteral("About Brindle"), actions.showAbout);
    add(QStringLiteral("Check for Updates…"), actions.checkForUpdates);
    add(QStringLiteral("Quit"), actions.quit, QKeySequence(QStringLiteral("Ctrl+Q")));
    connect(&m_menu, &QMenu::aboutToShow, this, &StatusItem::refreshNotice);
    refreshNotice();
    Platform::current().trayHost->onChange([this] { followHost(); });
}

QAction *StatusItem::add(const QString &title, std::function<void()> action,
                         const QKeySequence &shortcut) {
    QAction *item = m_menu.addAction(title);
    item->setShortcut(shortcut);
    // A later turn, so that the menu has closed before anything happens.
    connect(item, &QAction::triggered, this, std::move(action), Qt::QueuedConnection);
    return item;
}

void StatusItem::setHotkey(const QString &hotkey) {
    // Doubled, since a single one would mark a key of the menu.
    const QString title = QStringLiteral("Enrich && Paste");
    m_enrichAndPaste->setText(hotkey.isEmpty() ? title
                                               : title + QStringLiteral(" (%1)").arg(hotkey));
}

void StatusItem::refreshNotice() {
    QString text = Access::notice();
    m_notice->setVisible(!text.isEmpty());
    m_underNotice->setVisible(!text.isEmpty());
    m_notice->setText(text.replace(u'&', QStringLiteral("&&")));
}

void StatusItem::refreshImage(bool tokenIsAging, bool isFetching) {
    m_tokenIsAging = tokenIsAging;
    m_isFetching = isFetching;
    refreshNotice(); // panels need not say that they show the menu
    if (m_trayIcon)
        show();
    else
        followHost();
}

void StatusItem::followHost() {
    if (!Platform::current().trayHost->isAvailable().value_or(false)) {
        m_trayIcon.reset();
    } else if (!m_trayIcon) {
        // Made only when there is a host: the toolkit never registers an icon that was there first.
        m_trayIcon = std::make_unique<QSystemTrayIcon>();
        show();
        m_trayIcon->setContextMenu(&m_menu);
        // The toolkit opens it for the other button only.
        connect(m_trayIcon.get(), &QSystemTrayIcon::activated, this,
                [this](QSystemTrayIcon::ActivationReason reason) {
                    if (reason == QSystemTrayIcon::Trigger)
                        m_menu.popup(QCursor::pos());
                });
        m_trayIcon->show();
    }
}

void StatusItem::show() {
    m_trayIcon->setIcon(m_pictures.icon(m_tokenIsAging, m_isFetching));
    m_trayIcon->setToolTip(m_pictures.description());
}
