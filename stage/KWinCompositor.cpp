#include "stage/KWinCompositor.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {

const QString socketName = QStringLiteral("kwin-0");

// Without a menu no desktop entry is ever found.
constexpr char menu[] = R"(<Menu>
  <Name>Applications</Name>
  <DefaultAppDirs/>
  <DefaultDirectoryDirs/>
  <Include><All/></Include>
</Menu>
)";

// Started by KWin when XWayland is there, in the environment of its session.
constexpr char session[] = R"(echo "$DISPLAY" >"$XDG_RUNTIME_DIR/display.new"
mv "$XDG_RUNTIME_DIR/display.new" "$XDG_RUNTIME_DIR/display"
)";

void grant(DesktopHome &home, const QString &program, const QString &globals) {
    const QString name = QFileInfo(program).fileName();
    home.write(u"data/applications/%1.desktop"_s.arg(name),
               u"[Desktop Entry]\nType=Application\nName=%1\nExec=%2\nNoDisplay=true\n"
               "X-KDE-Wayland-Interfaces=%3\n"_s.arg(name, program, globals)
                   .toUtf8());
}

// The installed one has a file capability, which a process without privileges may not be given
// everywhere, and which hides it from the debugger.
QString ownCopy(DesktopHome &home) {
    QString copy = home.path() + u"/kwin_wayland"_s;
    const QString installed = QStandardPaths::findExecutable(u"kwin_wayland"_s);
    QFile file(installed);
    if (!file.copy(copy) ||
        !QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
        home.fail(u"kwin_wayland"_s, u"cannot be copied: "_s + file.errorString());
    return copy;
}

} // namespace

KWinCompositor::KWinCompositor(DesktopHome &home, const DesktopOptions &options) {
    const QString keyboard = QStringLiteral(WAYLAND_KEYBOARD_PROGRAM);
    QProcessEnvironment &environment = home.environment();
    environment.insert(u"XDG_SESSION_TYPE"_s, u"wayland"_s);
    environment.insert(u"XDG_CURRENT_DESKTOP"_s, u"KDE"_s);
    environment.insert(u"QT_QPA_PLATFORM"_s, u"wayland"_s);
    environment.insert(u"KWIN_COMPOSE"_s, u"Q"_s); // without OpenGL, which would be emulated
    home.write(u"config/menus/applications.menu"_s, menu);
    home.write(u"config/kxkbrc"_s,
               u"[Layout]\nUse=true\nLayoutList=%1\n"_s.arg(options.layouts).toUtf8());
    grant(home, keyboard, u"org_kde_kwin_fake_input"_s);
    for (auto each = options.grants.begin(); each != options.grants.end(); ++each)
        grant(home, each.key(), each.value());
    m_kwin =
        home.begin(ownCopy(home), {u"--virtual"_s, u"--width"_s, u"1280"_s, u"--height"_s, u"800"_s,
                                   u"--no-lockscreen"_s, u"--socket"_s, socketName, u"--xwayland"_s,
                                   u"/bin/sh "_s + home.write(u"session.sh"_s, session)});
    QFile display(home.path() + u"/run/display"_s);
    waitFor([&] { return display.exists() || m_kwin->state() == QProcess::NotRunning; });
    if (!display.open(QIODevice::ReadOnly)) {
        home.fail(u"kwin_wayland"_s, u"does not come up"_s);
        return;
    }
    m_display = QString::fromLocal8Bit(display.readAll()).trimmed();
    environment.insert(u"WAYLAND_DISPLAY"_s, socketName);
    environment.insert(u"DISPLAY"_s, m_display);
    m_keyboard = home.begin(keyboard);
    home.firstLine(*m_keyboard);
}

// Asked to terminate, it waits up to five seconds for XWayland, which may be waiting for it.
// Without it XWayland ends at once.
KWinCompositor::~KWinCompositor() {
    if (!m_kwin)
        return;
    m_kwin->kill();
    m_kwin->waitForFinished();
}
