#include "platform/portal/PortalShortcut.h"

#include <QDBusMetaType>

QDBusArgument &operator<<(QDBusArgument &out, const PortalShortcut &shortcut) {
    out.beginStructure();
    out << shortcut.id << shortcut.properties;
    out.endStructure();
    return out;
}

const QDBusArgument &operator>>(const QDBusArgument &in, PortalShortcut &shortcut) {
    in.beginStructure();
    in >> shortcut.id >> shortcut.properties;
    in.endStructure();
    return in;
}

QList<PortalShortcut> PortalShortcuts::of(const QVariant &value) {
    if (!value.canConvert<QDBusArgument>())
        return {};
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != QStringLiteral("a(sa{sv})"))
        return {};
    return qdbus_cast<QList<PortalShortcut>>(argument);
}

QVariant PortalShortcuts::toArgument(const QList<PortalShortcut> &shortcuts) {
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<QList<PortalShortcut>>();
    return QVariant::fromValue(shortcuts);
}
