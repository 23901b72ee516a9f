#include "stage/GnomePortal.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

const QString permissions = QStringLiteral("/usr/libexec/xdg-permission-store");
const QString portalsDialogs = QStringLiteral("/usr/libexec/xdg-desktop-portal-gnome");
const QString shortcutsDialogs =
    QStringLiteral("/usr/libexec/gnome-control-center-global-shortcuts-provider");
const QString portal = QStringLiteral("/usr/libexec/xdg-desktop-portal");

} // namespace

bool gnomeGivesHotkeys() {
    return QFileInfo(shortcutsDialogs).isExecutable();
}

// The portal learns only when it starts what its dialogs can ask for.
void beginGnomePortal(DesktopHome &home) {
    home.begin(permissions);
    home.begin(portalsDialogs);
    if (gnomeGivesHotkeys())
        home.begin(shortcutsDialogs);
    QDBusMessage question = QDBusMessage::createMethodCall(
        u"org.freedesktop.impl.portal.desktop.gnome"_s, u"/org/freedesktop/portal/desktop"_s,
        u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    question << u"org.freedesktop.impl.portal.RemoteDesktop"_s << u"AvailableDeviceTypes"_s;
    const QDBusConnection bus(home.environment().value(u"DBUS_SESSION_BUS_ADDRESS"_s));
    const auto offersKeys = [&] {
        const QVariant types = bus.call(question).arguments().value(0);
        return types.value<QDBusVariant>().variant().toUInt() != 0;
    };
    if (!waitFor(offersKeys))
        home.fail(portalsDialogs, u"offers no keys"_s);
    home.begin(portal);
}
