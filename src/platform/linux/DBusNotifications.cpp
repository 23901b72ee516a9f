#include "platform/linux/DBusNotifications.h"

#include "model/AppInfo.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QTimer>
#include <QVariantMap>

namespace {

QDBusMessage call(const QString &method) {
    return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.Notifications"),
                                          QStringLiteral("/org/freedesktop/Notifications"),
                                          QStringLiteral("org.freedesktop.Notifications"), method);
}

/// Only the three characters that start markup: servers know no other entity for sure.
QString escaped(QString body) {
    return body.replace(u'&', QStringLiteral("&amp;"))
        .replace(u'<', QStringLiteral("&lt;"))
        .replace(u'>', QStringLiteral("&gt;"));
}

} // namespace

void DBusNotifications::show(const QString &title, const QString &body,
                             std::function<void(const QString &)> failed) {
    if (m_takesMarkup) {
        send(title, body, *m_takesMarkup, failed);
        return;
    }
    auto *asked = new QDBusPendingCallWatcher(
        QDBusConnection::sessionBus().asyncCall(call(QStringLiteral("GetCapabilities"))), this);
    connect(asked, &QDBusPendingCallWatcher::finished, this,
            [this, title, body, failed = std::move(failed), asked] {
                asked->deleteLater();
                const QDBusPendingReply<QStringList> capabilities = *asked;
                if (capabilities.isError()) {
                    failed(capabilities.error().message());
                    return;
                }
                m_takesMarkup = capabilities.value().contains(u"body-markup");
                send(title, body, *m_takesMarkup, failed);
            });
}

void DBusNotifications::send(const QString &title, const QString &body, bool markup,
                             const std::function<void(const QString &)> &failed) {
    constexpr quint32 replacesNothing = 0;
    constexpr int serverDecidesWhenItGoes = -1;
    QDBusMessage notify = call(QStringLiteral("Notify"));
    notify << AppInfo::displayName() << replacesNothing << AppInfo::bundleIdentifier() << title
           << (markup ? escaped(body) : body) << QStringList() << QVariantMap()
           << serverDecidesWhenItGoes;
    auto *sent = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(notify), this);
    connect(sent, &QDBusPendingCallWatcher::finished, this, [this, failed, sent] {
        sent->deleteLater();
        if (!sent->isError())
            return;
        // Another server may answer the next one, with other capabilities.
        m_takesMarkup.reset();
        failed(sent->error().message());
    });
}

void DBusNotifications::findServer(std::function<void(const QString &, const QString &)> done) {
    if (!QDBusConnection::sessionBus().isConnected()) { // it would never answer
        QTimer::singleShot(
            0, this, [done = std::move(done)] { done({}, QStringLiteral("no session bus")); });
        return;
    }
    auto *asked = new QDBusPendingCallWatcher(
        QDBusConnection::sessionBus().asyncCall(call(QStringLiteral("GetServerInformation"))),
        this);
    connect(asked, &QDBusPendingCallWatcher::finished, this, [done = std::move(done), asked] {
        asked->deleteLater();
        const QDBusPendingReply<QString, QString, QString, QString> server = *asked;
        if (server.isError())
            done({}, server.error().message());
        else
            done(server.argumentAt<0>() + u' ' + server.argumentAt<2>(), {});
    });
}
