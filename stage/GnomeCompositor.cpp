#include "stage/GnomeCompositor.h"

#include "stage/MessageBus.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

#include <linux/input-event-codes.h>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

const QString shell = QStringLiteral("gnome-shell");
const QString socketName = QStringLiteral("gnome-0");
const QString settingsService = QStringLiteral("/usr/libexec/dconf-service");
const QString keyBindings = QStringLiteral("/usr/libexec/gsd-media-keys");

/// Now and then a start hangs; another one comes up. It takes one to three seconds.
constexpr int mostStarts = 5;
constexpr int longestStart = 8000; // milliseconds

// Nothing moves, greets or locks by itself; $0 are the layouts of the keyboard.
constexpr char settings[] = R"(set -e
gsettings set org.gnome.desktop.interface enable-animations false
gsettings set org.gnome.shell welcome-dialog-last-shown-version 999
gsettings set org.gnome.desktop.session idle-delay 0
gsettings set org.gnome.desktop.input-sources sources "$0"
echo ready
)";

// Its X server asks for a key, also this process, when it looks at the windows or the clipboard.
void admitToXWayland(QProcessEnvironment &environment) {
    const QDir folder(environment.value(u"XDG_RUNTIME_DIR"_s));
    const QStringList keys =
        folder.entryList({u".mutter-Xwaylandauth.*"_s}, QDir::Files | QDir::Hidden, QDir::Time);
    const QString key = folder.filePath(keys.value(0));
    environment.insert(u"XAUTHORITY"_s, key);
    qputenv("XAUTHORITY", QFile::encodeName(key));
}

/// What a shell has started holds its name on the bus, so that no other can have it.
void killAllBut(const QList<qint64> &others, const DesktopHome &home) {
    waitFor([&] {
        QList<qint64> left = DesktopHome::processesAt(home.path());
        left.removeIf([&](qint64 id) { return others.contains(id); });
        for (const qint64 id : std::as_const(left))
            ::kill(static_cast<pid_t>(id), SIGKILL);
        return left.isEmpty();
    });
}

QString inputSources(const QString &layouts) {
    QStringList sources;
    for (const QString &layout : layouts.split(u','))
        sources.append(u"('xkb','%1')"_s.arg(layout));
    return u"[%1]"_s.arg(sources.join(u','));
}

} // namespace

QString GnomeCompositor::missing() {
    if (QStandardPaths::findExecutable(shell).isEmpty())
        return u"gnome-shell is not installed"_s;
    for (const QString &program : {settingsService, keyBindings}) {
        if (!QFileInfo(program).isExecutable())
            return program + u" is not installed"_s;
    }
    return {};
}

GnomeCompositor::GnomeCompositor(DesktopHome &home, const DesktopOptions &options) {
    QProcessEnvironment &environment = home.environment();
    environment.insert(u"XDG_SESSION_TYPE"_s, u"wayland"_s);
    environment.insert(u"XDG_CURRENT_DESKTOP"_s, u"GNOME"_s);
    environment.insert(u"QT_QPA_PLATFORM"_s, u"wayland"_s);
    // The machine's own would be asked for the session, which is not ours.
    environment.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, beginMessageBus(home, u"system"_s));
    beginSettings(home, options);
    for (int start = 1; home.problem().isEmpty() && m_display.isEmpty(); ++start) {
        if (!beginShell(home) && start == mostStarts)
            home.fail(shell, u"does not come up"_s);
    }
    if (!home.problem().isEmpty())
        return;
    environment.insert(u"WAYLAND_DISPLAY"_s, socketName);
    environment.insert(u"DISPLAY"_s, m_display);
    admitToXWayland(environment);
    home.begin(keyBindings);
    beginKeyboard(home);
}

void GnomeCompositor::beginSettings(DesktopHome &home, const DesktopOptions &options) {
    home.begin(settingsService);
    const StageProcess *writer = home.begin(
        u"/bin/sh"_s, {u"-c"_s, QString::fromLatin1(settings), inputSources(options.layouts)});
    home.firstLine(*writer);
}

/// False if it hangs.
bool GnomeCompositor::beginShell(DesktopHome &home) {
    const qsizetype before = home.said(shell).size();
    const QList<qint64> others = DesktopHome::processesAt(home.path());
    m_shell = home.begin(shell, {u"--headless"_s, u"--virtual-monitor"_s, u"1280x800"_s,
                                 u"--wayland-display"_s, socketName});
    const auto isUp = [&] { return home.said(shell).indexOf("GNOME Shell started", before) >= 0; };
    if (!waitFor([&] { return isUp() || m_shell->state() == QProcess::NotRunning; },
                 longestStart) ||
        !isUp()) {
        killAllBut(others, home);
        m_shell->waitForFinished();
        return false;
    }
    static const QRegularExpression display(u"public X11 display (:\\d+)"_s);
    m_display = display.match(QString::fromLocal8Bit(home.said(shell).sliced(before))).captured(1);
    return !m_display.isEmpty();
}

/// The shell begins with its overview, which takes the keys.
void GnomeCompositor::beginKeyboard(DesktopHome &home) {
    m_keyboard = home.begin(QStringLiteral(WAYLAND_KEYBOARD_PROGRAM));
    home.firstLine(*m_keyboard);
    m_keyboard->send(u"+%1 -%1 +%2 -%2"_s.arg(KEY_LEFTSHIFT).arg(KEY_ESC));
    if (m_keyboard->waitForEvent(u"done"_s).isEmpty())
        home.fail(m_keyboard->program(), u"presses no keys"_s);
    m_keyboard->forgetEvents();
}

// It would wait for its clients.
GnomeCompositor::~GnomeCompositor() {
    if (!m_shell)
        return;
    m_shell->kill();
    m_shell->waitForFinished();
}
