#include "app/StatusItem.h"

#include "model/AppInfo.h"
#include "platform/Platform.h"

#include <QPainter>

namespace {

constexpr qreal dimmed = 0.4;

QIcon icon(qreal opacity) {
    const QPixmap art(QStringLiteral(":/icons/brindle.png"));
    QPixmap drawn(art.size());
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    painter.setOpacity(opacity);
    painter.drawPixmap(0, 0, art);
    return drawn;
}

} // namespace

StatusItem::StatusItem(const Actions &actions) {
    m_enrichAndPaste = add({}, actions.enrichAndPaste);
    add(QStringLiteral("Enrich Clipboard Only"), actions.enrichOnly);
    m_menu.addSeparator();
    add(QStringLiteral("Preferences…"), actions.openPreferences,
        QKeySequence(QStringLiteral("Ctrl+,")));
    add(QStringLiteral("View Logs…"), actions.openLogs, QKeySequence(QStringLiteral("Ctrl+L")));
    m_menu.addSeparator();
    add(QStringLiteral("Quit"), actions.quit, QKeySequence(QStringLiteral("Ctrl+Q")));
    Platform::current().trayHost->onChange([this] { dockIfPossible(); });
}

QAction *StatusItem::add(const QString &title, std::function<void()> action,
                         const QKeySequence &shortcut) {
    QAction *item = m_menu.addAction(title);
    item->setShortcut(shortcut);
    // A later turn, so that the menu has closed before anything happens.
    connect(item, &QAction::triggered, this, std::move(action), Qt::QueuedConnection);
    return item;
}

void StatusItem::setHotkey(const QString &symbols) {
    m_enrichAndPaste->setText(
        QStringLiteral("Enrich & Paste (%1)")
            .arg(symbols)
            .replace(u'&', QStringLiteral("&&"))); // a single one would mark a key of the menu
}

void StatusItem::refreshImage(bool isFetching) {
    m_icon = icon(isFetching ? dimmed : 1.0);
    if (m_trayIcon)
        m_trayIcon->setIcon(m_icon);
    else
        dockIfPossible();
}

void StatusItem::dockIfPossible() {
    // Made only when there is a host: the toolkit never registers an icon that was there before it.
    if (m_trayIcon || !Platform::current().trayHost->isAvailable())
        return;
    m_trayIcon = std::make_unique<QSystemTrayIcon>(m_icon);
    m_trayIcon->setToolTip(AppInfo::displayName());
    m_trayIcon->setContextMenu(&m_menu);
    m_trayIcon->show();
}
