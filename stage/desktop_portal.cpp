// Plays the desktop's portal: the keys and the shortcuts, and a user who answers its dialogs as
// told. It tells of what happens as events "did", each with the words of it under "what".

#include "stage/JsonLines.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVirtualObject>
#include <QFile>
#include <QMap>
#include <QSet>
#include <QSocketNotifier>
#include <QTimer>

using namespace Qt::StringLiterals;

struct Shortcut {
    QString id;
    QVariantMap properties;
};
Q_DECLARE_METATYPE(Shortcut)

static QDBusArgument &operator<<(QDBusArgument &out, const Shortcut &shortcut) {
    out.beginStructure();
    out << shortcut.id << shortcut.properties;
    out.endStructure();
    return out;
}
static const QDBusArgument &operator>>(const QDBusArgument &in, Shortcut &shortcut) {
    in.beginStructure();
    in >> shortcut.id >> shortcut.properties;
    in.endStructure();
    return in;
}

namespace {

const QString root = u"/org/freedesktop/portal/desktop"_s;
const QString portal = u"org.freedesktop.portal."_s;

void did(const QString &what) {
    say(u"did"_s, {{u"what"_s, what}});
}

struct Traits {
    QMap<QString, uint> versions; ///< of the interfaces that are there
    uint devices = 7;
    bool knowsRegistry = true;
    bool isSilent = false;
    uint bindCode = 0; ///< what a successful Bind answers
};

class Portal : public QDBusVirtualObject {
public:
    Portal(const Traits &traits, const QStringList &tokens)
        : m_traits(traits), m_tokens(tokens.begin(), tokens.end()) {}

    QString introspect(const QString &) const override { return {}; }

    bool handleMessage(const QDBusMessage &call, const QDBusConnection &bus) override {
        const QString method = call.interface().section(u'.', -1) + u'.' + call.member();
        if (m_traits.isSilent)
            call.setDelayedReply(true);
        else if (method == u"Registry.Register")
            handleRegister(call, bus);
        else if (!greet(call.service()))
            bus.send(call.createErrorReply(QDBusError::AccessDenied, u"who are you?"_s));
        else if (method == u"Properties.Get")
            handleGet(call, bus);
        else if (method == u"Request.Close")
            handleWithdrawal(call.path());
        else if (method == u"Session.Close")
            handleEnd(call.path());
        else if (call.member().startsWith(u"NotifyKeyboard"))
            handleKey(call, bus);
        else
            handleRequest(call, bus);
        return true;
    }

    /// What the user and the desktop do.
    void carryOut(const QString &command) {
        const QString word = command.section(u' ', 0, 0);
        const QString rest = command.section(u' ', 1);
        if (word == u"answer") {
            m_answer = rest;
        } else if (word == u"revoke") {
            m_takesBack = true;
            takeBack();
        } else if (word == u"distrust") {
            m_tokens.clear();
        } else if (word == u"trigger") {
            m_trigger = rest;
            emitShortcuts(u"ShortcutsChanged"_s, {QVariant::fromValue(triggers())});
        } else if (word == u"activate") {
            emitShortcuts(u"Activated"_s, {rest, qulonglong(0), QVariantMap()});
        } else if (word == u"deactivate") {
            emitShortcuts(u"Deactivated"_s, {rest, qulonglong(0), QVariantMap()});
        }
    }

private:
    static uint keyboard() { return 1; }

    void handleRegister(const QDBusMessage &call, const QDBusConnection &bus) {
        did(u"register "_s + call.arguments().value(0).toString());
        m_known.insert(call.service());
        bus.send(m_traits.knowsRegistry
                     ? call.createReply()
                     : call.createErrorReply(QDBusError::UnknownMethod, u"no such interface"_s));
    }

    /// A program that does not say first who it is stays a stranger.
    bool greet(const QString &sender) {
        if (!m_known.contains(sender))
            did(u"call of a stranger"_s);
        return m_known.contains(sender);
    }

    void handleGet(const QDBusMessage &call, const QDBusConnection &bus) {
        const QString interface = call.arguments().value(0).toString().section(u'.', -1);
        if (!m_traits.versions.contains(interface)) {
            bus.send(call.createErrorReply(QDBusError::InvalidArgs, u"No such interface"_s));
            return;
        }
        const uint value = call.arguments().value(1) == u"version"_s ? m_traits.versions[interface]
                                                                     : m_traits.devices;
        bus.send(call.createReply(QVariant::fromValue(QDBusVariant(value))));
    }

    void handleWithdrawal(const QString &request) {
        did(m_questions.remove(request) ? u"question withdrawn"_s
                                        : u"unknown question withdrawn"_s);
    }

    void handleEnd(const QString &session) {
        m_open.remove(session);
        did(m_sessions.remove(session) ? u"session closed"_s : u"unknown session closed"_s);
    }

    /// What is taken back is a session that is open, now or soon.
    void takeBack() {
        if (!m_takesBack || m_open.isEmpty())
            return;
        m_takesBack = false;
        m_open.clear();
        for (const QString &session : std::exchange(m_sessions, {}))
            emitSignal(session, u"Session"_s, u"Closed"_s, {});
    }

    void handleKey(const QDBusMessage &call, const QDBusConnection &bus) {
        const bool isKnown =
            m_sessions.contains(call.arguments().value(0).value<QDBusObjectPath>().path());
        const bool isCode = call.member().endsWith(u"Keycode");
        did(u"%1 %2 %3"_s.arg(isCode ? u"key"_s : u"keysym"_s)
                .arg(call.arguments().value(2).toInt())
                .arg(call.arguments().value(3).toUInt() ? u"down"_s : u"up"_s));
        bus.send(isKnown ? call.createReply()
                         : call.createErrorReply(QDBusError::AccessDenied, u"Invalid session"_s));
    }

    void handleRequest(const QDBusMessage &call, const QDBusConnection &bus) {
        const QVariantMap options = qdbus_cast<QVariantMap>(call.arguments().constLast());
        const QString sender = call.service().mid(1).replace(u'.', u'_');
        const auto path = [&](const QString &kind, const QString &token) {
            return root + u'/' + kind + u'/' + sender + u'/' + options[token].toString();
        };
        const QString request = path(u"request"_s, u"handle_token"_s);
        bus.send(call.createReply(QVariant::fromValue(QDBusObjectPath(request))));
        if (call.member() == u"CreateSession") {
            const QString session = path(u"session"_s, u"session_handle_token"_s);
            m_sessions.insert(session);
            m_kinds[session] = call.interface().section(u'.', -1);
            respond(request, 0, {{u"session_handle"_s, session}});
        } else if (call.member() == u"SelectDevices") {
            m_offered = options.value(u"restore_token"_s).toString();
            did(u"select types %1 persist %2 token \"%3\""_s.arg(options.value(u"types"_s).toUInt())
                    .arg(options.value(u"persist_mode"_s, u"no"_s).toString(), m_offered));
            respond(request, 0, {});
        } else if (call.member() == u"Start") {
            start(request, call.arguments().constFirst().value<QDBusObjectPath>().path());
        } else if (call.member() == u"BindShortcuts") {
            bind(request, qdbus_cast<QList<Shortcut>>(call.arguments().value(1)));
        }
    }

    void start(const QString &request, const QString &session) {
        QVariantMap results{{u"devices"_s, keyboard()}};
        const bool asks = !m_tokens.contains(m_offered);
        if (m_traits.versions[u"RemoteDesktop"_s] >= 2 && m_answer != u"allow once") {
            const QString token = u"token-%1"_s.arg(++m_lastToken);
            m_tokens.insert(token);
            results[u"restore_token"_s] = token;
        }
        if (asks && m_answer == u"switch off")
            results[u"devices"_s] = 0U;
        if (answerAs(request, asks, 0, results)) {
            m_open.insert(session);
            takeBack();
        }
    }

    void bind(const QString &request, const QList<Shortcut> &shortcuts) {
        QStringList told;
        bool isNew = false;
        for (const Shortcut &shortcut : shortcuts) {
            told.append(shortcut.id + u'=' +
                        shortcut.properties.value(u"preferred_trigger"_s).toString());
            isNew = isNew || !m_bound.contains(shortcut.id);
        }
        did(u"bind "_s + told.join(u' '));
        if (isNew && m_answer != u"allow") {
            refuse(request);
            return;
        }
        for (const Shortcut &shortcut : shortcuts)
            m_bound.insert(shortcut.id);
        answerAs(request, isNew, m_traits.bindCode,
                 {{u"shortcuts"_s, QVariant::fromValue(triggers())}});
    }

    /// As the user does, where the desktop asks; false unless that is a yes.
    bool answerAs(const QString &request, bool asks, uint code, const QVariantMap &results) {
        if (asks)
            did(u"user asked"_s);
        if (asks && m_answer == u"nothing")
            m_questions.insert(request);
        else if (asks && m_answer == u"deny")
            respond(request, 1, {});
        else
            respond(request, code, results);
        return !asks || (m_answer != u"nothing" && m_answer != u"deny");
    }

    /// As GNOME does it: one code for a user who says no and for nobody having been asked.
    void refuse(const QString &request) {
        constexpr int time = 500; // that a user takes at least
        if (m_answer == u"deny")
            did(u"user asked"_s);
        QTimer::singleShot(m_answer == u"deny" ? time : 0, this,
                           [this, request] { respond(request, 2, {}); });
        if (m_answer == u"can't ask yet")
            m_answer = u"allow"_s;
    }

    QList<Shortcut> triggers() const {
        QList<Shortcut> all;
        for (const QString &id : m_bound)
            all.append({id, {{u"description"_s, id}, {u"trigger_description"_s, m_trigger}}});
        return all;
    }

    void respond(const QString &request, uint code, const QVariantMap &results) {
        emitSignal(request, u"Request"_s, u"Response"_s, {code, results});
    }
    void emitShortcuts(const QString &name, const QVariantList &arguments) {
        for (const QString &session : std::as_const(m_sessions)) {
            if (m_kinds[session] == u"GlobalShortcuts")
                emitSignal(root, u"GlobalShortcuts"_s, name,
                           QVariantList{QVariant::fromValue(QDBusObjectPath(session))} + arguments);
        }
    }
    static void emitSignal(const QString &path, const QString &interface, const QString &name,
                           const QVariantList &arguments) {
        QDBusMessage signal = QDBusMessage::createSignal(path, portal + interface, name);
        signal.setArguments(arguments);
        QDBusConnection::sessionBus().send(signal);
    }

    Traits m_traits;
    QString m_answer =
        u"allow"_s; ///< allow, allow once, deny, switch off, nothing, can't ask, can't ask yet
    QString m_trigger = u"Ctrl+Alt+Super+V"_s;
    QString m_offered; ///< the token that came last
    int m_lastToken = 0;
    QSet<QString> m_tokens; ///< those that are good
    QSet<QString> m_bound, m_known, m_sessions;
    QSet<QString> m_questions; ///< the requests that the user is asked about
    QSet<QString> m_open;      ///< the sessions that keys can be sent by
    bool m_takesBack = false;
    QMap<QString, QString> m_kinds; ///< the interface of each session
};

} // namespace

int main(int argc, char **argv) {
    QCoreApplication application(argc, argv);
    qDBusRegisterMetaType<Shortcut>();
    qDBusRegisterMetaType<QList<Shortcut>>();
    QCommandLineParser parser;
    parser.addOptions({{u"keys"_s, u"version of RemoteDesktop"_s, u"number"_s},
                       {u"shortcuts"_s, u"version of GlobalShortcuts"_s, u"number"_s},
                       {u"bind-code"_s, u"response to a successful Bind"_s, u"number"_s, u"0"_s},
                       {u"no-keyboard"_s, u"offer pointers only"_s},
                       {u"no-registry"_s, u"know no registry"_s},
                       {u"silent"_s, u"answer nothing"_s},
                       {u"token"_s, u"trust that token"_s, u"token"_s}});
    parser.process(application);
    Traits traits;
    if (parser.isSet(u"no-keyboard"_s))
        traits.devices = 2;
    traits.knowsRegistry = !parser.isSet(u"no-registry"_s);
    traits.isSilent = parser.isSet(u"silent"_s);
    traits.bindCode = parser.value(u"bind-code"_s).toUInt();
    if (parser.isSet(u"keys"_s))
        traits.versions[u"RemoteDesktop"_s] = parser.value(u"keys"_s).toUInt();
    if (parser.isSet(u"shortcuts"_s))
        traits.versions[u"GlobalShortcuts"_s] = parser.value(u"shortcuts"_s).toUInt();
    Portal object(traits, parser.values(u"token"_s));
    QDBusConnection bus = QDBusConnection::sessionBus();
    QFile commands;
    if (!commands.open(fileno(stdin), QIODevice::ReadOnly | QIODevice::Unbuffered))
        return 1;
    QSocketNotifier reader(fileno(stdin), QSocketNotifier::Read);
    QObject::connect(&reader, &QSocketNotifier::activated, &object, [&] {
        const QByteArray line = commands.readLine();
        if (line.isEmpty())
            application.quit();
        object.carryOut(QString::fromUtf8(line.chopped(line.endsWith('\n') ? 1 : 0)));
    });
    if (!bus.registerVirtualObject(root, &object, QDBusConnection::SubPath) ||
        !bus.registerService(u"org.freedesktop.portal.Desktop"_s))
        return 1;
    say(u"ready"_s);
    return application.exec();
}
