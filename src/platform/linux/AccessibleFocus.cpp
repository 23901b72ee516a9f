#include "platform/linux/AccessibleFocus.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QList>
#include <QString>

#include <atomic>
#include <optional>

namespace {

using Clock = std::chrono::steady_clock;

// Numbers of the AT-SPI protocol (atspi-constants.h).
constexpr int activeState = 1;
constexpr int focusedState = 12;
constexpr int showingState = 25;
constexpr uint passwordTextRole = 40;

/// Deeper trees than this are not worth the user's wait.
constexpr int deepest = 64;

const auto accessibleInterface = QStringLiteral("org.a11y.atspi.Accessible");
const auto rootPath = QStringLiteral("/org/a11y/atspi/accessible/root");

/// An accessible object: the bus name of its application and its path there.
struct Object {
    QString service;
    QString path;
};

bool hasState(const QList<uint> &states, int state) {
    return states.size() > state / 32 && (states[state / 32] & (1U << (state % 32)));
}

/// One look at the accessibility bus. Calls to many objects go out together; none outlives the
/// deadline.
class Look {
public:
    explicit Look(std::chrono::milliseconds deadline) : m_deadline(Clock::now() + deadline) {}
    ~Look() {
        if (m_bus)
            QDBusConnection::disconnectFromBus(m_bus->name());
    }
    Look(const Look &) = delete;
    Look &operator=(const Look &) = delete;

    bool connect() {
        const QDBusConnection session = QDBusConnection::sessionBus();
        const auto service = QStringLiteral("org.a11y.Bus");
        if (!session.isConnected() || !session.interface()->isServiceRegistered(service))
            return false;
        const QDBusMessage address =
            session.call(QDBusMessage::createMethodCall(service, QStringLiteral("/org/a11y/bus"),
                                                        service, QStringLiteral("GetAddress")),
                         QDBus::Block, timeLeft());
        if (address.type() != QDBusMessage::ReplyMessage)
            return false;
        // Of its own, since two looks may be under way.
        static std::atomic<int> looks;
        m_bus =
            QDBusConnection::connectToBus(address.arguments().value(0).toString(),
                                          QStringLiteral("brindle-accessibility-%1").arg(++looks));
        return m_bus->isConnected();
    }

    /// The children of each of `parents`, all in one list.
    QList<Object> children(const QList<Object> &parents) {
        QList<QDBusPendingCall> asked;
        for (const Object &parent : parents)
            asked.append(ask(parent, QStringLiteral("GetChildren")));
        QList<Object> all;
        for (QDBusPendingCall &call : asked) {
            call.waitForFinished();
            if (call.isError())
                continue;
            const auto list = call.reply().arguments().value(0).value<QDBusArgument>();
            list.beginArray();
            while (!list.atEnd()) {
                QString service;
                QDBusObjectPath path;
                list.beginStructure();
                list >> service >> path;
                list.endStructure();
                all.append({service, path.path()});
            }
            list.endArray();
        }
        return all;
    }

    /// The states of each of `objects`, in their order; empty for one that does not answer.
    QList<QList<uint>> states(const QList<Object> &objects) {
        QList<QDBusPendingCall> asked;
        for (const Object &object : objects)
            asked.append(ask(object, QStringLiteral("GetState")));
        QList<QList<uint>> all;
        for (QDBusPendingCall &call : asked) {
            QDBusPendingReply<QList<uint>> reply = call;
            reply.waitForFinished();
            all.append(reply.isError() ? QList<uint>() : reply.value());
        }
        return all;
    }

    uint role(const Object &object) {
        QDBusPendingReply<uint> reply = ask(object, QStringLiteral("GetRole"));
        reply.waitForFinished();
        return reply.isError() ? 0 : reply.value();
    }

    QString name(const Object &object) {
        QDBusMessage message = QDBusMessage::createMethodCall(
            object.service, object.path, QStringLiteral("org.freedesktop.DBus.Properties"),
            QStringLiteral("Get"));
        message << accessibleInterface << QStringLiteral("Name");
        QDBusPendingReply<QDBusVariant> reply = m_bus->asyncCall(message, timeLeft());
        reply.waitForFinished();
        return reply.isError() ? QString() : reply.value().variant().toString();
    }

    bool isOver() const { return Clock::now() >= m_deadline; }

private:
    int timeLeft() const {
        const auto left = m_deadline - Clock::now();
        return std::max(
            1, static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(left).count()));
    }

    QDBusPendingCall ask(const Object &object, const QString &method) {
        return m_bus->asyncCall(QDBusMessage::createMethodCall(object.service, object.path,
                                                               accessibleInterface, method),
                                timeLeft());
    }

    Clock::time_point m_deadline;
    std::optional<QDBusConnection> m_bus;
};

QList<Object> activeWindows(Look &look) {
    const Object registry{QStringLiteral("org.a11y.atspi.Registry"), rootPath};
    const QList<Object> windows = look.children(look.children({registry}));
    const auto states = look.states(windows);
    QList<Object> active;
    for (qsizetype i = 0; i < windows.size(); ++i) {
        if (hasState(states[i], activeState))
            active.append(windows[i]);
    }
    return active;
}

/// The focused object below the active window, found level by level among what is showing.
std::optional<Object> focusedObject(Look &look) {
    QList<Object> level = activeWindows(look);
    std::optional<Object> focused;
    for (int depth = 0; depth < deepest && !level.isEmpty() && !look.isOver(); ++depth) {
        const QList<Object> objects = look.children(level);
        const auto states = look.states(objects);
        level.clear();
        for (qsizetype i = 0; i < objects.size(); ++i) {
            // A container may call itself focused together with the field in it; the deepest
            // counts.
            if (hasState(states[i], focusedState))
                focused = objects[i];
            if (hasState(states[i], showingState))
                level.append(objects[i]);
        }
    }
    return focused;
}

} // namespace

bool AccessibleFocus::isPasswordField(std::chrono::milliseconds deadline) {
    Look look(deadline);
    if (!look.connect())
        return false;
    const auto focused = focusedObject(look);
    return focused && look.role(*focused) == passwordTextRole;
}

QString AccessibleFocus::activeApplication(std::chrono::milliseconds deadline) {
    Look look(deadline);
    const QList<Object> windows = look.connect() ? activeWindows(look) : QList<Object>();
    // More than one calls itself active only while the focus moves.
    return windows.size() == 1 ? look.name({windows.constFirst().service, rootPath}) : QString();
}
