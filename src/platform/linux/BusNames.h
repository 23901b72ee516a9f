#pragma once

#include <QDBusConnection>

namespace BusNames {

/// Whether something on `bus` has that name or would be started for it. Asks only the bus.
bool isThereOrStartable(const QDBusConnection &bus, const QString &name);

} // namespace BusNames
