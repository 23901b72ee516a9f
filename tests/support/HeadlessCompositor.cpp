#include "support/HeadlessCompositor.h"

#include "stage/StageProcess.h"

#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QStandardPaths>

#include <pwd.h>
#include <unistd.h>

namespace {

/// sway refuses to run as root.
void becomeNobody(QProcess &process, const QString &home) {
    const passwd *nobody = getpwnam("nobody");
    if (geteuid() != 0 || !nobody)
        return;
    const auto give = [=](const QString &path) {
        return chown(qPrintable(path), nobody->pw_uid, nobody->pw_gid) == 0;
    };
    if (!give(home) || !give(home + "/run"))
        return;
    process.setChildProcessModifier([user = nobody->pw_uid, group = nobody->pw_gid] {
        if (setgid(group) != 0 || setuid(user) != 0)
            _exit(126);
    });
}

} // namespace

HeadlessCompositor::HeadlessCompositor(Kind kind) {
    const QString run = m_home.path() + "/run";
    QDir().mkdir(run);
    QFile::setPermissions(run, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QFile configuration(m_home.path() + "/config");
    if (configuration.open(QIODevice::WriteOnly))
        configuration.write("xwayland disable\nset $mod Mod4\nbindsym $mod+Return nop theirs\n");
    configuration.close();
    configuration.setPermissions(configuration.permissions() | QFile::ReadOther);

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "SWAYSOCK"})
        environment.remove(name);
    const QString socket = kind == Kind::Sway ? "wayland-1" : "wk-0";
    const QList<std::pair<QString, QString>> own{
        {"HOME", m_home.path()},        {"XDG_RUNTIME_DIR", run},
        {"WLR_BACKENDS", "headless"},   {"WLR_LIBINPUT_NO_DEVICES", "1"},
        {"WLR_RENDERER", "pixman"},     {"QT_QPA_PLATFORM", "wayland"},
        {"XDG_CURRENT_DESKTOP", "KDE"}, {"SWAYSOCK", run + "/sway.sock"}};
    for (const auto &[name, value] : own)
        environment.insert(name, value);
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    becomeNobody(m_process, m_home.path());
    if (kind == Kind::Sway) {
        m_process.start("sway", {"-c", configuration.fileName()});
    } else {
        // A copy has not the right to raise its priority, which a test can't give it.
        const QString copy = m_home.path() + "/kwin_wayland";
        QFile::copy(QStandardPaths::findExecutable("kwin_wayland"), copy);
        m_process.start(copy, {"--virtual", "--no-lockscreen", "--socket", socket});
    }
    // The socket is there before anybody listens.
    const bool isUp = waitFor([&] {
        QLocalSocket caller;
        caller.connectToServer(run + "/" + socket);
        return caller.waitForConnected(1000) || m_process.state() == QProcess::NotRunning;
    });
    if (!isUp || m_process.state() == QProcess::NotRunning)
        m_problem = "the compositor did not start: " + m_process.readAll().right(500);
    qputenv("XDG_RUNTIME_DIR", run.toLocal8Bit());
    qputenv("WAYLAND_DISPLAY", socket.toLocal8Bit());
    qputenv("SWAYSOCK", (run + "/sway.sock").toLocal8Bit());
}

HeadlessCompositor::~HeadlessCompositor() {
    m_process.kill();
    m_process.waitForFinished();
}

void HeadlessCompositor::reload() {
    QProcess::execute("swaymsg", {"-q", "reload"});
}
