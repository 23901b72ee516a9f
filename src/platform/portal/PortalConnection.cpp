#include "platform/portal/PortalConnection.h"

#include "model/AppInfo.h"
#include "platform/linux/BusNames.h"

#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

#include <utility>

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString registry = QStringLiteral("org.freedesktop.host.portal.Registry");

/// Right after login the portal waits for others before it is up.
constexpr std::chrono::seconds longestStart{25};

bool isMissing(const QDBusMessage &answer) {
    const QDBusError::ErrorType type = QDBusError(answer).type();
    return type == QDBusError::UnknownInterface || type == QDBusError::UnknownMethod ||
           type == QDBusError::UnknownObject;
}

bool isAbsent(const QDBusMessage &answer) {
    return QDBusError(answer).type() == QDBusError::ServiceUnknown;
}

} // namespace

QString PortalConnection::problem() {
    return BusNames::isThereOrStartable(QDBusConnection::sessionBus(), service)
               ? QString()
               : QStringLiteral("the desktop has no portal: %1 is not on the bus").arg(service);
}

PortalConnection::~PortalConnection() {
    if (!m_name.isEmpty())
        QDBusConnection::disconnectFromBus(m_name);
}

QDBusConnection PortalConnection::bus() {
    if (!m_name.isEmpty())
        return QDBusConnection(m_name);
    static int count = 0;
    m_name = QStringLiteral("brindle-portal-%1").arg(++count);
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, m_name);
    const auto *watcher =
        new QDBusServiceWatcher(service, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &before, const QString &now) {
                ownerChanged(before, now);
            });
    return bus;
}

void PortalConnection::ownerChanged(const QString &before, const QString &now) {
    if (!before.isEmpty()) {
        m_stage = Stage::Apart; // who comes next does not know us
        Q_EMIT lost();
    }
    if (!now.isEmpty())
        Q_EMIT appeared();
}

void PortalConnection::send(const QDBusMessage &message, std::chrono::milliseconds limit,
                            Answered answered) {
    auto *watcher = new QDBusPendingCallWatcher(
        bus().asyncCall(message, static_cast<int>(limit.count())), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [watcher, answered = std::move(answered)] {
                watcher->deleteLater();
                answered(watcher->reply());
            });
}

/// The bus starts the portal first, which may take its time; from then on it must answer soon.
void PortalConnection::introduce() {
    m_stage = Stage::Introducing;
    QDBusMessage start = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("StartServiceByName"));
    start << service << 0U;
    send(start, longestStart, [this](const QDBusMessage &started) {
        // One that runs need not be one that the bus could start.
        if (started.type() == QDBusMessage::ErrorMessage && !isAbsent(started)) {
            introduced(started);
            return;
        }
        QDBusMessage name = QDBusMessage::createMethodCall(service, portalPath, registry,
                                                           QStringLiteral("Register"));
        name << AppInfo::bundleIdentifier() << QVariantMap();
        send(name, longestAnswer, [this](const QDBusMessage &answer) {
            // Whoever is silent now would be silent to every other call. An older portal finds out
            // by itself who we are.
            const bool isSilent =
                QDBusError(answer).type() == QDBusError::NoReply || isAbsent(answer);
            const bool isRefused =
                answer.type() == QDBusMessage::ErrorMessage && !isSilent && !isMissing(answer);
            m_registrationProblem = isRefused ? answer.errorMessage() : QString();
            introduced(isSilent ? answer : QDBusMessage());
        });
    });
}

void PortalConnection::introduced(const QDBusMessage &answer) {
    const bool failed = answer.type() == QDBusMessage::ErrorMessage;
    m_stage = failed ? Stage::Apart : Stage::Ready;
    const QString problem =
        failed ? QStringLiteral("the desktop's portal does not answer (%1)").arg(answer.errorName())
               : QString();
    for (const auto &tell : std::exchange(m_waiting, {}))
        tell(problem);
}

void PortalConnection::call(const QString &interface, const QString &method,
                            const QVariantList &arguments, Answered answered) {
    QDBusMessage message = QDBusMessage::createMethodCall(service, portalPath, interface, method);
    message.setArguments(arguments);
    if (m_stage == Stage::Ready) {
        send(message, longestAnswer, std::move(answered));
        return;
    }
    m_waiting.push_back([this, message, answered = std::move(answered)](const QString &problem) {
        if (problem.isEmpty())
            send(message, longestAnswer, answered);
        else
            answered(QDBusMessage::createError(QDBusError::NoReply, problem));
    });
    if (m_stage == Stage::Apart)
        introduce();
}

void PortalConnection::tell(const QString &path, const QString &interface, const QString &method) {
    bus().send(QDBusMessage::createMethodCall(service, path, interface, method));
}

void PortalConnection::property(
    const QString &interface, const QString &name,
    std::function<void(const QVariant &value, const QString &problem)> answered) {
    call(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
         {interface, name},
         [interface, answered = std::move(answered)](const QDBusMessage &answer) {
             const QVariant value = answer.arguments().value(0);
             if (answer.type() != QDBusMessage::ErrorMessage)
                 answered(value.value<QDBusVariant>().variant(), {});
             else if (QDBusError(answer).type() == QDBusError::NoReply)
                 answered({}, answer.errorMessage());
             else
                 answered({}, QStringLiteral("the desktop's portal has no ") +
                                  interface.section(u'.', -1));
         });
}

void PortalConnection::listen(const QString &path, const QString &interface, const QString &signal,
                              QObject *receiver, const char *slot) {
    bus().connect(service, path, interface, signal, receiver, slot);
}

PortalConnection::Handle PortalConnection::newHandle(const QString &kind) {
    static int count = 0;
    const QString token = QStringLiteral("brindle%1").arg(++count);
    const QString sender = bus().baseService().mid(1).replace(u'.', u'_');
    return {token, QStringLiteral("%1/%2/%3/%4").arg(portalPath, kind, sender, token)};
}
