#include "stage/VirtualDesktop.h"

#include "stage/GnomeCompositor.h"
#include "stage/GnomePortal.h"
#include "stage/KWinCompositor.h"
#include "stage/LabwcCompositor.h"
#include "stage/MessageBus.h"
#include "stage/SwayCompositor.h"
#include "stage/XScreen.h"

#include <QDBusConnectionInterface>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

constexpr char dunstConfig[] = R"([global]
    monitor = 0
    follow = none
    font = Monospace 10
    markup = full
)";

std::unique_ptr<Screen> makeScreen(DesktopHome &home, const DesktopOptions &options) {
    switch (options.kind) {
    case DesktopKind::Sway:
        return std::make_unique<SwayCompositor>(home, options);
    case DesktopKind::Labwc:
        return std::make_unique<LabwcCompositor>(home, options);
    case DesktopKind::KWin:
        return std::make_unique<KWinCompositor>(home, options);
    case DesktopKind::Gnome:
        return std::make_unique<GnomeCompositor>(home, options);
    case DesktopKind::X11:
        break;
    }
    return std::make_unique<XScreen>(home, options);
}

} // namespace

VirtualDesktop::VirtualDesktop(const DesktopOptions &options) : m_kind(options.kind) {
    if (options.bus)
        beginBus(options.serviceFolders);
    m_screen = makeScreen(m_home, options);
    if (problem().isEmpty())
        beginServices(options);
    if (problem().isEmpty())
        awaitServices(options);
}

VirtualDesktop::~VirtualDesktop() {
    QDBusConnection::disconnectFromBus(m_busAddress);
    m_screen.reset();
    m_home.end();
}

void VirtualDesktop::join() const {
    for (const char *name :
         {"HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "XDG_CURRENT_DESKTOP", "DISPLAY",
          "WAYLAND_DISPLAY", "SWAYSOCK", "DBUS_SESSION_BUS_ADDRESS"}) {
        if (const QString value = environment().value(QString::fromLatin1(name)); value.isEmpty())
            qunsetenv(name);
        else
            qputenv(name, QFile::encodeName(value));
    }
}

QString VirtualDesktop::waylandSocket() const {
    const QString name = environment().value(u"WAYLAND_DISPLAY"_s);
    return name.isEmpty() ? QString() : environment().value(u"XDG_RUNTIME_DIR"_s) + u'/' + name;
}

void VirtualDesktop::beginBus(const QStringList &serviceFolders) {
    m_busAddress = beginMessageBus(m_home, u"bus"_s, serviceFolders);
    if (m_busAddress.isEmpty())
        return;
    m_home.environment().insert(u"DBUS_SESSION_BUS_ADDRESS"_s, m_busAddress);
    if (!QDBusConnection::connectToBus(m_busAddress, m_busAddress).isConnected())
        m_home.fail(u"dbus-daemon"_s, bus().lastError().message());
}

void VirtualDesktop::beginServices(const DesktopOptions &options) {
    if (options.accessibility) {
        m_home.environment().remove(u"NO_AT_BRIDGE"_s);
        m_home.environment().insert(u"QT_LINUX_ACCESSIBILITY_ALWAYS_ON"_s, u"1"_s);
        m_home.begin(u"/usr/libexec/at-spi-bus-launcher"_s, {u"--launch-immediately"_s});
    }
    if (options.portal) {
        if (options.accessibility)
            awaitName(u"org.a11y.Bus"_s, u"at-spi-bus-launcher"_s); // it looks for it once
        beginGnomePortal(m_home);
    }
    if (options.notifications)
        m_home.begin(u"dunst"_s, {u"-conf"_s, m_home.write(u"dunstrc"_s, dunstConfig)});
    if (options.keyring) {
        StageProcess *daemon =
            m_home.begin(u"gnome-keyring-daemon"_s,
                         {u"--foreground"_s, u"--unlock"_s, u"--components=secrets"_s});
        daemon->write("password"); // read to its end, not to the end of a line
        daemon->closeWriteChannel();
    }
}

void VirtualDesktop::awaitServices(const DesktopOptions &options) {
    m_screen->awaitReady();
    if (options.accessibility)
        awaitName(u"org.a11y.Bus"_s, u"at-spi-bus-launcher"_s);
    if (options.portal)
        awaitName(u"org.freedesktop.portal.Desktop"_s, u"xdg-desktop-portal"_s);
    if (options.notifications)
        awaitName(u"org.freedesktop.Notifications"_s, u"dunst"_s);
    if (options.keyring)
        awaitName(u"org.freedesktop.secrets"_s, u"gnome-keyring-daemon"_s);
}

void VirtualDesktop::awaitName(const QString &name, const QString &program) {
    QDBusConnectionInterface *names = bus().interface();
    if (!names || !waitFor([&] { return names->isServiceRegistered(name).value(); }))
        m_home.fail(program, u"does not appear on the bus"_s);
}
