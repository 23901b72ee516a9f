#include "platform/linux/BusNames.h"

#include <QDBusConnectionInterface>
#include <QDBusReply>

bool BusNames::isThereOrStartable(const QDBusConnection &bus, const QString &name) {
    const QDBusConnectionInterface *names = bus.interface();
    return names && (names->isServiceRegistered(name).value() ||
                     names->activatableServiceNames().value().contains(name));
}
