#include "platform/linux/StatusNotifierTrayHost.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QSystemTrayIcon>

#include <xcb/xfixes.h>

namespace {
const auto watcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
}

StatusNotifierTrayHost::StatusNotifierTrayHost(std::shared_ptr<X11Connection> x11)
    : m_x11(std::move(x11)) {
    if (m_x11->isOpen())
        m_traySelection =
            m_x11->atom("_NET_SYSTEM_TRAY_S" + QByteArray::number(m_x11->screenNumber()));
}

bool StatusNotifierTrayHost::isAvailable() {
    return QSystemTrayIcon::isSystemTrayAvailable();
}

void StatusNotifierTrayHost::onChange(std::function<void()> changed) {
    m_changed = std::move(changed);
    QDBusConnection bus = QDBusConnection::sessionBus();
    auto *watcher = new QDBusServiceWatcher(watcherService, bus,
                                            QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            &StatusNotifierTrayHost::somethingChanged);
    for (const QString &signal : {QStringLiteral("StatusNotifierHostRegistered"),
                                  QStringLiteral("StatusNotifierHostUnregistered")}) {
        bus.connect(watcherService, QStringLiteral("/StatusNotifierWatcher"), watcherService,
                    signal, this, SLOT(somethingChanged()));
    }
    if (m_traySelection != XCB_ATOM_NONE) {
        m_x11->watchSelection(m_traySelection, [this](const xcb_xfixes_selection_notify_event_t &) {
            somethingChanged();
        });
    }
}

void StatusNotifierTrayHost::somethingChanged() {
    if (m_changed)
        m_changed();
}
