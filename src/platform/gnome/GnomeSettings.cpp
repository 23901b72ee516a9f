#include "platform/gnome/GnomeSettings.h"

// GLib's headers use names that Qt defines as macros unless told otherwise.
#undef signals
#include <gio/gio.h>

namespace {

/// Without knowing the schema a wrong name would end the program.
GSettingsSchema *schemaOf(const char *name) {
    GSettingsSchemaSource *source = g_settings_schema_source_get_default();
    return source ? g_settings_schema_source_lookup(source, name, TRUE) : nullptr;
}

/// What carries the settings would by itself end the program together with the bus.
void outliveTheBus() {
    [[maybe_unused]] static GDBusConnection *const kept = [] {
        GDBusConnection *bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
        if (bus)
            g_dbus_connection_set_exit_on_close(bus, FALSE);
        return bus;
    }();
}

QStringList taken(gchar **strings) {
    QStringList all;
    for (gchar **each = strings; each && *each; ++each)
        all.append(QString::fromUtf8(*each));
    g_strfreev(strings);
    return all;
}

} // namespace

void GnomeSettings::Release::operator()(_GSettings *settings) const {
    g_object_unref(settings);
}

std::optional<GnomeSettings> GnomeSettings::open(const char *schema, const QString &path) {
    g_autoptr(GSettingsSchema) found = schemaOf(schema);
    if (!found)
        return std::nullopt;
    outliveTheBus();
    const QByteArray place = path.toUtf8();
    return GnomeSettings(
        g_settings_new_full(found, nullptr, path.isEmpty() ? nullptr : place.constData()));
}

QStringList GnomeSettings::listKeys() const {
    g_autoptr(GSettingsSchema) schema = nullptr;
    g_object_get(m_settings.get(), "settings-schema", &schema, nullptr);
    QStringList names = taken(g_settings_schema_list_keys(schema));
    names.removeIf([&](const QString &name) {
        g_autoptr(GSettingsSchemaKey) key =
            g_settings_schema_get_key(schema, name.toUtf8().constData());
        return !g_variant_type_equal(g_settings_schema_key_get_value_type(key),
                                     G_VARIANT_TYPE_STRING_ARRAY);
    });
    return names;
}

QStringList GnomeSettings::list(const QString &key) const {
    return taken(g_settings_get_strv(m_settings.get(), key.toUtf8().constData()));
}

QString GnomeSettings::text(const QString &key) const {
    g_autofree gchar *text = g_settings_get_string(m_settings.get(), key.toUtf8().constData());
    return QString::fromUtf8(text);
}

uint GnomeSettings::number(const QString &key) const {
    return g_settings_get_uint(m_settings.get(), key.toUtf8().constData());
}

QString GnomeSettings::summary(const QString &key) const {
    g_autoptr(GSettingsSchema) schema = nullptr;
    g_object_get(m_settings.get(), "settings-schema", &schema, nullptr);
    g_autoptr(GSettingsSchemaKey) found =
        g_settings_schema_get_key(schema, key.toUtf8().constData());
    return QString::fromUtf8(g_settings_schema_key_get_summary(found));
}

void GnomeSettings::setList(const QString &key, const QStringList &values) {
    QList<QByteArray> bytes;
    for (const QString &value : values)
        bytes.append(value.toUtf8());
    QList<const gchar *> strings;
    for (const QByteArray &each : std::as_const(bytes))
        strings.append(each.constData());
    strings.append(nullptr);
    g_settings_set_strv(m_settings.get(), key.toUtf8().constData(), strings.constData());
}

void GnomeSettings::setText(const QString &key, const QString &value) {
    g_settings_set_string(m_settings.get(), key.toUtf8().constData(), value.toUtf8().constData());
}

void GnomeSettings::reset(const QString &key) {
    g_settings_reset(m_settings.get(), key.toUtf8().constData());
}

void GnomeSettings::flush() {
    g_settings_sync();
}
