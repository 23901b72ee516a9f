#include "support/NotificationLog.h"

#include "stage/StageProcess.h"

#include <QMutex>

#include <gio/gio.h>

#include <algorithm>

// Shared with the thread on which GDBus hands over messages.
struct NotificationLog::Heard {
    struct Call {
        QByteArray sender;
        uint32_t serial = 0;
        ShownNotification notification;
    };

    void hear(GDBusMessage *message) {
        const QMutexLocker lock(&mutex);
        if (g_dbus_message_get_message_type(message) == G_DBUS_MESSAGE_TYPE_METHOD_CALL)
            hearCall(message);
        else
            hearAnswer(message);
    }

    void hearCall(GDBusMessage *message) {
        GVariant *body = g_dbus_message_get_body(message);
        if (!body || !g_variant_is_of_type(body, G_VARIANT_TYPE("(susssasa{sv}i)")))
            return;
        const char *application = nullptr, *title = nullptr, *text = nullptr;
        Call call{g_dbus_message_get_sender(message), g_dbus_message_get_serial(message), {}};
        g_variant_get(body, "(&su&s&s&sasa{sv}i)", &application, nullptr, nullptr, &title, &text,
                      nullptr, nullptr, nullptr);
        call.notification.application = QString::fromUtf8(application);
        call.notification.title = QString::fromUtf8(title);
        call.notification.body = QString::fromUtf8(text);
        calls.append(call);
    }

    void hearAnswer(GDBusMessage *message) {
        const QByteArray caller = g_dbus_message_get_destination(message);
        const uint32_t serial = g_dbus_message_get_reply_serial(message);
        const auto call = std::find_if(calls.begin(), calls.end(), [&](const Call &candidate) {
            return candidate.sender == caller && candidate.serial == serial;
        });
        if (call == calls.end())
            return;
        GVariant *body = g_dbus_message_get_body(message);
        if (body && g_variant_is_of_type(body, G_VARIANT_TYPE("(u)")))
            g_variant_get(body, "(u)", &call->notification.id);
    }

    mutable QMutex mutex;
    QList<Call> calls;
};

struct NotificationLog::Connection {
    ~Connection() {
        if (!bus)
            return;
        if (filter)
            g_dbus_connection_remove_filter(bus, filter);
        g_dbus_connection_close_sync(bus, nullptr, nullptr);
        g_object_unref(bus);
    }

    // The bus drops a monitor that speaks, and GDBus answers calls it does not know: so what is
    // not for us ends here.
    static GDBusMessage *listen(GDBusConnection *bus, GDBusMessage *message, gboolean incoming,
                                gpointer heard) {
        if (!incoming || qstrcmp(g_dbus_message_get_destination(message),
                                 g_dbus_connection_get_unique_name(bus)) == 0)
            return message;
        (*static_cast<std::shared_ptr<Heard> *>(heard))->hear(message);
        g_object_unref(message);
        return nullptr;
    }

    void monitor(const QString &address, const std::shared_ptr<Heard> &heard, GError **error) {
        bus = g_dbus_connection_new_for_address_sync(
            address.toUtf8().constData(),
            GDBusConnectionFlags(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                 G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, error);
        if (!bus)
            return;
        filter = g_dbus_connection_add_filter(
            bus, &Connection::listen, new std::shared_ptr<Heard>(heard),
            [](gpointer shared) { delete static_cast<std::shared_ptr<Heard> *>(shared); });
        const char *const rules[] = {
            "type='method_call',member='Notify',path='/org/freedesktop/Notifications'",
            "type='method_return',sender='org.freedesktop.Notifications'", "type='error'", nullptr};
        GVariant *reply = g_dbus_connection_call_sync(
            bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.Monitoring",
            "BecomeMonitor", g_variant_new("(^asu)", rules, 0), nullptr, G_DBUS_CALL_FLAGS_NONE,
            15000, nullptr, error);
        if (reply)
            g_variant_unref(reply);
    }

    GDBusConnection *bus = nullptr;
    guint filter = 0;
};

NotificationLog::NotificationLog(const QString &busAddress)
    : m_heard(std::make_shared<Heard>()), m_connection(std::make_unique<Connection>()) {
    GError *error = nullptr;
    m_connection->monitor(busAddress, m_heard, &error);
    if (error)
        m_problem = QString::fromUtf8(error->message);
    g_clear_error(&error);
}

NotificationLog::~NotificationLog() = default;

QList<ShownNotification> NotificationLog::notifications() const {
    const QMutexLocker lock(&m_heard->mutex);
    QList<ShownNotification> all;
    for (const Heard::Call &call : m_heard->calls)
        all.append(call.notification);
    return all;
}

bool NotificationLog::waitForAccepted(qsizetype count, int milliseconds) const {
    return waitFor(
        [&] {
            const QList<ShownNotification> all = notifications();
            return std::count_if(all.cbegin(), all.cend(),
                                 [](const auto &each) { return each.id != 0; }) >= count;
        },
        milliseconds);
}
