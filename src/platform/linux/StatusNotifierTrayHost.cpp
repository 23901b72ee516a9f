#include "platform/linux/StatusNotifierTrayHost.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QVariant>

#include <xcb/xfixes.h>

#include <utility>

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

// Not asked through the toolkit: its first answer is its last.
void StatusNotifierTrayHost::look() {
    ++m_looks;
    if (hasTraySelectionOwner())
        found(true);
    else if (QDBusConnection::sessionBus().isConnected())
        askWatcher();
    else
        found(false);
}

void StatusNotifierTrayHost::askWatcher() {
    QDBusMessage get = QDBusMessage::createMethodCall(
        watcherService, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("Get"));
    get << watcherService << QStringLiteral("IsStatusNotifierHostRegistered");
    get.setAutoStartService(false);
    constexpr int longestWait = 1000; // ms; a watcher that hangs counts as none
    auto *asked = new QDBusPendingCallWatcher(
        QDBusConnection::sessionBus().asyncCall(get, longestWait), this);
    connect(asked, &QDBusPendingCallWatcher::finished, this, [this, asked, look = m_looks] {
        asked->deleteLater();
        const QDBusPendingReply<QVariant> reply = *asked;
        if (look == m_looks)
            found(!reply.isError() && reply.value().toBool());
    });
}

void StatusNotifierTrayHost::found(bool isAvailable) {
    if (std::exchange(m_isAvailable, isAvailable) != isAvailable)
        m_changed();
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
            [this](const QString &, const QString &oldOwner) {
                if (!oldOwner.isEmpty()) // the icons go with it, however soon another comes
                    found(false);
                look();
            });
    for (const QString &signal : {QStringLiteral("StatusNotifierHostRegistered"),
                                  QStringLiteral("StatusNotifierHostUnregistered")}) {
        bus.connect(watcherService, watcherPath, watcherService, signal, this,
                    SLOT(somethingChanged()));
    }
    if (m_traySelection != XCB_ATOM_NONE) {
        m_x11->watchSelection(m_traySelection,
                              [this](const xcb_xfixes_selection_notify_event_t &) { look(); });
    }
    look();
}
