#include "stage/VirtualDesktop.h"

#include <QDBusConnectionInterface>
#include <QDir>
#include <QFileInfo>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

constexpr char busConfig[] = R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path=%1</listen>
  <auth>EXTERNAL</auth>
  %2
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

// No key and mouse bindings but a click that focuses: a hotkey under test must not be the window
// manager's.
constexpr char openboxConfig[] = R"(<?xml version="1.0"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>yes</focusNew><followMouse>no</followMouse></focus>
  <desktops><number>2</number></desktops>
  <keyboard/>
  <mouse>
    <context name="Client">
      <mousebind button="Left" action="Press">
        <action name="Focus"/><action name="Raise"/>
      </mousebind>
    </context>
  </mouse>
</openbox_config>
)";

constexpr char dunstConfig[] = R"([global]
    monitor = 0
    follow = none
    font = Monospace 10
    markup = full
)";

// XTEST presses the physical keys anew when they repeat, which no test asks for.
bool stopAutoRepeat(const QString &display) {
    const XConnection x(display);
    if (!x.isValid())
        return false;
    const uint32_t off = XCB_AUTO_REPEAT_MODE_OFF;
    xcb_change_keyboard_control(x.get(), XCB_KB_AUTO_REPEAT_MODE, &off);
    return x.sync();
}

// A window manager that starts says that it is there, and then still moves the focus about. It
// obeys only when it has come to its events: asked for one workspace, it makes one of the two it
// began with.
bool obeys(XConnection &x) {
    const xcb_atom_t count = x.atom("_NET_NUMBER_OF_DESKTOPS");
    xcb_client_message_event_t wish{};
    wish.response_type = XCB_CLIENT_MESSAGE;
    wish.format = 32;
    wish.window = x.root();
    wish.type = count;
    wish.data.data32[0] = 1;
    xcb_send_event(x.get(), 0, x.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char *>(&wish));
    const XOwned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        x.get(), xcb_get_property(x.get(), 0, x.root(), count, XCB_ATOM_CARDINAL, 0, 1), nullptr));
    return reply && xcb_get_property_value_length(reply.get()) == sizeof(uint32_t) &&
           *static_cast<const uint32_t *>(xcb_get_property_value(reply.get())) == 1;
}

} // namespace

VirtualDesktop::VirtualDesktop(const DesktopOptions &options) {
    makeFolders();
    if (options.bus)
        beginBus(options.serviceFolders);
    const QStringList common{u"-displayfd"_s, u"1"_s, u"-noreset"_s, u"-nolisten"_s, u"tcp"_s};
    m_outerDisplay =
        beginDisplay(u"Xvfb"_s, common + QStringList{u"-screen"_s, u"0"_s, u"1280x800x24"_s});
    m_display = m_outerDisplay;
    if (options.physicalKeyboard && m_problem.isEmpty()) {
        if (!stopAutoRepeat(m_outerDisplay))
            fail(u"Xvfb"_s, u"does not answer"_s);
        m_environment.insert(u"DISPLAY"_s, m_outerDisplay);
        m_display = beginDisplay(
            u"Xephyr"_s, common + QStringList{u"-no-host-grab"_s, u"-screen"_s, u"1280x800"_s});
    }
    m_environment.insert(u"DISPLAY"_s, m_display);
    if (options.physicalKeyboard && m_problem.isEmpty())
        keepAwake();
    if (m_problem.isEmpty())
        beginServices(options);
    if (m_problem.isEmpty())
        awaitServices(options);
}

VirtualDesktop::~VirtualDesktop() {
    QDBusConnection::disconnectFromBus(m_busAddress);
    while (!m_programs.empty()) {
        m_programs.back()->stop();
        m_programs.pop_back();
    }
    // Programs that the bus or another program started usually leave with the bus.
    if (!waitFor([this] { return processes().isEmpty(); }, 2000)) {
        for (const qint64 id : processes()) {
            qWarning("process %lld stays after its desktop: killed", static_cast<long long>(id));
            ::kill(static_cast<pid_t>(id), SIGKILL);
        }
        waitFor([this] { return processes().isEmpty(); });
    }
}

QList<qint64> VirtualDesktop::processesAt(const QString &home) {
    const QByteArray mark = '\0' + ("HOME=" + QFile::encodeName(home)) + '\0';
    QList<qint64> found;
    for (const QString &entry : QDir(u"/proc"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        bool isNumber = false;
        const qint64 id = entry.toLongLong(&isNumber);
        QFile environment(u"/proc/%1/environ"_s.arg(entry));
        if (isNumber && environment.open(QIODevice::ReadOnly) &&
            ('\0' + environment.readAll()).contains(mark))
            found.append(id);
    }
    return found;
}

void VirtualDesktop::makeFolders() {
    const auto folder = [this](const QString &name) {
        QString path = m_home.filePath(name);
        QDir().mkpath(path);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    };
    folder(u"log"_s);
    m_environment.insert(u"HOME"_s, m_home.path());
    m_environment.insert(u"XDG_CONFIG_HOME"_s, folder(u"config"_s));
    m_environment.insert(u"XDG_DATA_HOME"_s, folder(u"data"_s));
    m_environment.insert(u"XDG_STATE_HOME"_s, folder(u"state"_s));
    m_environment.insert(u"XDG_CACHE_HOME"_s, folder(u"cache"_s));
    m_environment.insert(u"XDG_RUNTIME_DIR"_s, folder(u"run"_s));
    m_environment.insert(u"TMPDIR"_s, folder(u"tmp"_s));
    m_environment.insert(u"XDG_SESSION_TYPE"_s, u"x11"_s);
    m_environment.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
    m_environment.insert(u"LANG"_s, u"C.UTF-8"_s);
    m_environment.insert(u"NO_AT_BRIDGE"_s, u"1"_s);
    // What concerns how programs run, not where, stays as the developer has it.
    for (const char *name : {"PATH", "LD_LIBRARY_PATH", "QT_PLUGIN_PATH", "FONTCONFIG_FILE",
                             "ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"}) {
        if (qEnvironmentVariableIsSet(name))
            m_environment.insert(QString::fromLatin1(name), qEnvironmentVariable(name));
    }
}

QString VirtualDesktop::writeFile(const QString &name, const QByteArray &content) {
    QFile file(m_home.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        m_problem = file.fileName() + u": "_s + file.errorString();
    return file.fileName();
}

StageProcess *VirtualDesktop::begin(const QString &program, const QStringList &arguments) {
    const auto &process = m_programs.emplace_back(
        std::make_unique<StageProcess>(m_environment, logOf(QFileInfo(program).fileName())));
    if (!process->launch(program, arguments))
        fail(program, process->errorString());
    return process.get();
}

QString VirtualDesktop::beginDisplay(const QString &program, const QStringList &arguments) {
    const StageProcess *server = begin(program, arguments);
    waitFor([&] { return !server->lines().isEmpty() || server->state() == QProcess::NotRunning; });
    if (!server->lines().isEmpty())
        return u':' + server->lines().first();
    fail(program, u"names no display"_s);
    return {};
}

// Xephyr may have read a key from the outer display and sleep on it until something wakes it.
void VirtualDesktop::keepAwake() {
    constexpr int often = 20; // milliseconds
    m_inner = std::make_unique<XConnection>(m_display);
    QObject::connect(&m_awake, &QTimer::timeout, [this] { m_inner->sync(); });
    m_awake.start(often);
}

void VirtualDesktop::beginBus(const QStringList &serviceFolders) {
    QString folders;
    for (const QString &folder : serviceFolders)
        folders += u"<servicedir>%1</servicedir>"_s.arg(folder.toHtmlEscaped());
    const QString config =
        QString::fromLatin1(busConfig).arg(m_home.filePath(u"run/bus"_s), folders);
    const StageProcess *daemon =
        begin(u"dbus-daemon"_s, {u"--config-file="_s + writeFile(u"bus.conf"_s, config.toUtf8()),
                                 u"--nofork"_s, u"--print-address"_s});
    waitFor([&] { return !daemon->lines().isEmpty() || daemon->state() == QProcess::NotRunning; });
    if (daemon->lines().isEmpty())
        return fail(u"dbus-daemon"_s, u"names no address"_s);
    m_busAddress = daemon->lines().first();
    m_environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, m_busAddress);
    if (!QDBusConnection::connectToBus(m_busAddress, m_busAddress).isConnected())
        fail(u"dbus-daemon"_s, bus().lastError().message());
}

void VirtualDesktop::beginServices(const DesktopOptions &options) {
    if (options.accessibility) {
        m_environment.remove(u"NO_AT_BRIDGE"_s);
        m_environment.insert(u"QT_LINUX_ACCESSIBILITY_ALWAYS_ON"_s, u"1"_s);
        begin(u"/usr/libexec/at-spi-bus-launcher"_s, {u"--launch-immediately"_s});
    }
    if (options.windowManager)
        begin(u"openbox"_s,
              {u"--sm-disable"_s, u"--config-file"_s, writeFile(u"openbox.xml"_s, openboxConfig)});
    if (options.notifications)
        begin(u"dunst"_s, {u"-conf"_s, writeFile(u"dunstrc"_s, dunstConfig)});
    if (options.keyring) {
        StageProcess *daemon = begin(u"gnome-keyring-daemon"_s,
                                     {u"--foreground"_s, u"--unlock"_s, u"--components=secrets"_s});
        daemon->write("password"); // read to its end, not to the end of a line
        daemon->closeWriteChannel();
    }
}

void VirtualDesktop::awaitServices(const DesktopOptions &options) {
    if (options.windowManager) {
        XConnection x(m_display);
        if (!waitFor([&] { return x.isValid() && obeys(x); }))
            fail(u"openbox"_s, u"does not manage the display"_s);
    }
    if (options.accessibility)
        awaitName(u"org.a11y.Bus"_s, u"at-spi-bus-launcher"_s);
    if (options.notifications)
        awaitName(u"org.freedesktop.Notifications"_s, u"dunst"_s);
    if (options.keyring)
        awaitName(u"org.freedesktop.secrets"_s, u"gnome-keyring-daemon"_s);
}

void VirtualDesktop::awaitName(const QString &name, const QString &program) {
    QDBusConnectionInterface *names = bus().interface();
    if (!names || !waitFor([&] { return names->isServiceRegistered(name).value(); }))
        fail(program, u"does not appear on the bus"_s);
}

void VirtualDesktop::fail(const QString &program, const QString &what) {
    if (!m_problem.isEmpty()) // the first one is the cause
        return;
    QFile log(logOf(QFileInfo(program).fileName()));
    const QByteArray said =
        log.open(QIODevice::ReadOnly) ? log.readAll().right(2000) : QByteArray();
    m_problem = u"%1 %2\n%3"_s.arg(program, what, QString::fromLocal8Bit(said));
}

QString VirtualDesktop::logOf(const QString &program) const {
    return m_home.filePath(u"log/%1.log"_s.arg(program));
}
