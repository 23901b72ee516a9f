#include "platform/linux/SecretServiceState.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QTimer>

namespace {

using State = SecretStore::State;
using Done = std::function<void(State)>;

const auto service = QStringLiteral("org.freedesktop.secrets");
constexpr int longestAnswer = 2000; // ms

void ask(const QDBusMessage &question, std::function<void(const QDBusPendingCall &)> then) {
    auto *asked = new QDBusPendingCallWatcher(
        QDBusConnection::sessionBus().asyncCall(question, longestAnswer));
    QObject::connect(asked, &QDBusPendingCallWatcher::finished, asked,
                     [asked, then = std::move(then)] {
                         asked->deleteLater();
                         then(*asked);
                     });
}

State failed(const QDBusPendingCall &call) {
    return call.error().type() == QDBusError::NoReply ? State::Mute : State::None;
}

void askCollection(const QDBusObjectPath &collection, const Done &done) {
    QDBusMessage get = QDBusMessage::createMethodCall(
        service, collection.path(), QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("Get"));
    get << QStringLiteral("org.freedesktop.Secret.Collection") << QStringLiteral("Locked");
    ask(get, [done](const QDBusPendingCall &call) {
        const QDBusPendingReply<QVariant> locked = call;
        if (locked.isError())
            done(failed(call));
        else
            done(locked.value().toBool() ? State::Locked : State::Ready);
    });
}

} // namespace

void SecretServiceState::find(Done done) {
    if (!QDBusConnection::sessionBus().isConnected()) {
        QTimer::singleShot(0, [done = std::move(done)] { done(State::None); });
        return;
    }
    QDBusMessage alias = QDBusMessage::createMethodCall(
        service, QStringLiteral("/org/freedesktop/secrets"),
        QStringLiteral("org.freedesktop.Secret.Service"), QStringLiteral("ReadAlias"));
    alias << QStringLiteral("default");
    ask(alias, [done = std::move(done)](const QDBusPendingCall &call) {
        const QDBusPendingReply<QDBusObjectPath> collection = call;
        if (collection.isError())
            done(failed(call));
        else if (collection.value().path() == u"/")
            done(State::Unmade);
        else
            askCollection(collection.value(), done);
    });
}
