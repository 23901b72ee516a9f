#pragma once

#include <QDBusArgument>
#include <QString>
#include <QVariantMap>

/// A shortcut as the portal's GlobalShortcuts tells and is told of it.
struct PortalShortcut {
    QString id;
    QVariantMap properties;
};
Q_DECLARE_METATYPE(PortalShortcut)

QDBusArgument &operator<<(QDBusArgument &out, const PortalShortcut &shortcut);
const QDBusArgument &operator>>(const QDBusArgument &in, PortalShortcut &shortcut);

namespace PortalShortcuts {

/// What stands in an answer or a signal; empty for what is no such list.
QList<PortalShortcut> of(const QVariant &value);

/// The same as an argument.
QVariant toArgument(const QList<PortalShortcut> &shortcuts);

} // namespace PortalShortcuts
