#include "platform/linux/SessionLock.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QVariant>

#include <memory>
#include <utility>

namespace {

/// A question to which true means that the screen is locked.
struct Question {
    QDBusConnection bus;
    QDBusMessage message;
};

QDBusMessage isActive(const QString &service, const QString &path) {
    return QDBusMessage::createMethodCall(service, path, service, QStringLiteral("GetActive"));
}

QList<Question> questions() {
    const QDBusConnection session = QDBusConnection::sessionBus();
    QDBusMessage hint = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"),
        QStringLiteral("/org/freedesktop/login1/session/auto"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    hint << QStringLiteral("org.freedesktop.login1.Session") << QStringLiteral("LockedHint");
    QList<Question> all{{session, isActive(QStringLiteral("org.freedesktop.ScreenSaver"),
                                           QStringLiteral("/org/freedesktop/ScreenSaver"))},
                        {session, isActive(QStringLiteral("org.gnome.ScreenSaver"),
                                           QStringLiteral("/org/gnome/ScreenSaver"))},
                        {QDBusConnection::systemBus(), hint}};
    // A call on a bus that is not there is never answered, not even with an error.
    all.removeIf([](const Question &question) { return !question.bus.isConnected(); });
    return all;
}

bool saysLocked(const QDBusMessage &reply) {
    const QVariant value = reply.arguments().value(0);
    return value.canConvert<QDBusVariant>() ? value.value<QDBusVariant>().variant().toBool()
                                            : value.toBool();
}

} // namespace

void SessionLock::check(std::chrono::milliseconds deadline, std::function<void(Answer)> done) {
    const auto asked = questions();
    if (asked.isEmpty()) {
        done(Answer::No);
        return;
    }
    struct State {
        std::function<void(Answer)> done;
        qsizetype outstanding;
    };
    const auto state = std::make_shared<State>(State{std::move(done), asked.size()});
    const auto decide = [state](Answer answer) {
        if (const auto tell = std::exchange(state->done, nullptr))
            tell(answer);
    };
    for (const Question &question : asked) {
        QDBusMessage message = question.message;
        message.setAutoStartService(false);
        auto *watcher = new QDBusPendingCallWatcher(
            question.bus.asyncCall(message, static_cast<int>(deadline.count())));
        QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                         [watcher, state, decide] {
                             watcher->deleteLater();
                             --state->outstanding;
                             // Who is not there, or knows of no session, has locked nothing.
                             if (!watcher->isError() && saysLocked(watcher->reply()))
                                 decide(Answer::Yes);
                             else if (state->outstanding == 0)
                                 decide(Answer::No);
                         });
    }
}
