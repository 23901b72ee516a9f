#include "platform/linux/StatusNotifierTrayHost.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusServiceWatcher>

#include <xcb/xfixes.h>

namespace {
const auto watcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
const auto watcherPath = QStringLiteral("/StatusNotifierWatcher");
} // namespace

StatusNotifierTrayHost::StatusNotifierTrayHost(std::shared_ptr<X11Connection> x11)
    : m_x11(std::move(x11)) {
    if (m_x11)
        m_traySelection =
            m_x11->atom("_NET_SYSTEM_TRAY_S" + QByteArray::number(m_x11->screenNumber()));
}

bool StatusNotifierTrayHost::isAvailable() {
    // Not asked through the toolkit: its first answer is its last.
    return hasStatusNotifierHost() || hasTraySelectionOwner();
}

bool StatusNotifierTrayHost::hasStatusNotifierHost() const {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.interface()->isServiceRegistered(watcherService))
        return false;
    QDBusMessage get = QDBusMessage::createMethodCall(
        watcherService, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("Get"));
    get << watcherService << QStringLiteral("IsStatusNotifierHostRegistered");
    constexpr int longestWait = 1000; // ms; a watcher that hangs counts as none
    const QDBusReply<QVariant> reply = bus.call(get, QDBus::Block, longestWait);
    return reply.isValid() && reply.value().toBool();
}

bool StatusNotifierTrayHost::hasTraySelectionOwner() const {
    if (m_traySelection == XCB_ATOM_NONE)
        return false;
    const XcbPtr<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        *m_x11, xcb_get_selection_owner(*m_x11, m_traySelection), nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
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
        bus.connect(watcherService, watcherPath, watcherService, signal, this,
                    SLOT(somethingChanged()));
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
