#include "stage/SwayCompositor.h"

using namespace Qt::StringLiterals;

namespace {

// What it executes writes on its own output, and only once the sockets are there.
constexpr char configuration[] = R"(xwayland enable
output HEADLESS-1 resolution 1280x800
default_border none
focus_follows_mouse no
bindsym Mod4+Return nop
exec echo "$WAYLAND_DISPLAY $DISPLAY $SWAYSOCK"
)";

} // namespace

SwayCompositor::SwayCompositor(DesktopHome &home, const DesktopOptions &options) {
    QProcessEnvironment &environment = home.environment();
    environment.insert(u"XDG_SESSION_TYPE"_s, u"wayland"_s);
    environment.insert(u"XDG_CURRENT_DESKTOP"_s, u"sway"_s);
    environment.insert(u"QT_QPA_PLATFORM"_s, u"wayland"_s);
    environment.insert(u"WLR_BACKENDS"_s, u"headless"_s);
    environment.insert(u"WLR_LIBINPUT_NO_DEVICES"_s, u"1"_s);
    environment.insert(u"WLR_RENDERER"_s, u"pixman"_s);
    const StageProcess *sway =
        home.begin(u"sway"_s, {u"-c"_s, home.write(u"sway.conf"_s, configuration)});
    const QStringList names = home.firstLine(*sway).split(u' ');
    if (!home.problem().isEmpty())
        return;
    m_display = names.value(1);
    environment.insert(u"WAYLAND_DISPLAY"_s, names.value(0));
    environment.insert(u"DISPLAY"_s, m_display);
    environment.insert(u"SWAYSOCK"_s, names.value(2));
    m_keyboard =
        home.begin(QStringLiteral(WAYLAND_KEYBOARD_PROGRAM), {u"--layouts"_s, options.layouts});
    home.firstLine(*m_keyboard);
}
