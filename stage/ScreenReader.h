#pragma once

#include "stage/StageProcess.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>

/// One thing on the accessibility bus, as an assistive program sees it.
struct Node {
    QString service;
    QString path;

    QVariant call(const QString &interface, const QString &method,
                  const QVariantList &arguments = {}) const {
        QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
        message.setArguments(arguments);
        return QDBusConnection("a11y").call(message).arguments().value(0);
    }
    QVariant accessible(const QString &method) const {
        return call("org.a11y.atspi.Accessible", method);
    }
    QVariant property(const QString &interface, const QString &name) const {
        const QString properties = "org.freedesktop.DBus.Properties";
        return call(properties, "Get", {"org.a11y.atspi." + interface, name})
            .value<QDBusVariant>()
            .variant();
    }
    QString name() const { return property("Accessible", "Name").toString(); }
    QString role() const { return accessible("GetRoleName").toString(); }
    bool is(int state) const {
        return qdbus_cast<QList<uint>>(accessible("GetState")).value(0) >> state & 1;
    }
    QString text() const { return call("org.a11y.atspi.Text", "GetText", {0, -1}).toString(); }
    bool act() const { return call("org.a11y.atspi.Action", "DoAction", {0}).toBool(); }
    QList<Node> children() const {
        QList<Node> found;
        const QVariant answer = accessible("GetChildren");
        if (!answer.canConvert<QDBusArgument>()) // gone meanwhile
            return found;
        const auto list = answer.value<QDBusArgument>();
        for (list.beginArray(); !list.atEnd();) {
            Node child;
            QDBusObjectPath at;
            list.beginStructure();
            list >> child.service >> at;
            list.endStructure();
            child.path = at.path();
            found.append(child);
        }
        list.endArray();
        return found;
    }
    /// Itself and all below it that is on the screen, in the order of reading.
    QList<Node> shown() const {
        QList<Node> found{*this};
        for (const Node &child : children()) {
            if (child.is(showing))
                found += child.shown();
        }
        return found;
    }

    enum State {
        active = 1,
        checked = 4,
        editable = 7,
        enabled = 8,
        focusable = 11,
        selected = 23,
        sensitive = 24,
        showing = 25
    };
};

/// An assistive program on a desktop with accessibility.
class ScreenReader {
public:
    explicit ScreenReader(const QDBusConnection &session) {
        const QDBusMessage reply = session.call(QDBusMessage::createMethodCall(
            "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress"));
        QDBusConnection::connectToBus(reply.arguments().value(0).toString(), "a11y");
    }
    ~ScreenReader() { QDBusConnection::disconnectFromBus("a11y"); }
    ScreenReader(const ScreenReader &) = delete;
    ScreenReader &operator=(const ScreenReader &) = delete;

    bool isConnected() const { return QDBusConnection("a11y").isConnected(); }

    QList<Node> shown() const {
        const Node root{"org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"};
        QList<Node> found;
        for (const Node &program : root.children()) {
            for (const Node &window : program.children())
                found += window.shown();
        }
        return found;
    }
    /// The one of that role and name, waiting for it; one without a path if it does not come.
    Node find(const QString &role, const QString &name) const {
        Node found;
        waitFor([&] {
            for (const Node &node : shown()) {
                if (node.name() == name && node.role() == role)
                    found = node;
            }
            return !found.path.isEmpty();
        });
        return found;
    }
};
