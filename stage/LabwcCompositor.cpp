#include "stage/LabwcCompositor.h"

using namespace Qt::StringLiterals;

namespace {

constexpr char configuration[] = R"(<?xml version="1.0"?>
<labwc_config>
  <keyboard>
    <keybind key="C-A-W-v" onRelease="yes">
      <action name="Execute" command="%1 paste"/>
    </keybind>
  </keyboard>
</labwc_config>
)";

} // namespace

LabwcCompositor::LabwcCompositor(DesktopHome &home, const DesktopOptions &options) {
    QProcessEnvironment &environment = home.environment();
    environment.insert(u"XDG_SESSION_TYPE"_s, u"wayland"_s);
    environment.insert(u"XDG_CURRENT_DESKTOP"_s, u"labwc:wlroots"_s);
    environment.insert(u"QT_QPA_PLATFORM"_s, u"wayland"_s);
    environment.insert(u"WLR_BACKENDS"_s, u"headless"_s);
    environment.insert(u"WLR_LIBINPUT_NO_DEVICES"_s, u"1"_s);
    environment.insert(u"WLR_RENDERER"_s, u"pixman"_s);
    home.write(u"labwc/rc.xml"_s,
               QString::fromLatin1(configuration).arg(QStringLiteral(BRINDLE_PROGRAM)).toUtf8());
    const StageProcess *labwc =
        home.begin(u"labwc"_s, {u"-C"_s, home.path() + u"/labwc"_s, u"-s"_s,
                                u"sh -c 'echo $WAYLAND_DISPLAY $DISPLAY'"_s});
    const QStringList names = home.firstLine(*labwc).split(u' ');
    if (!home.problem().isEmpty())
        return;
    m_display = names.value(1);
    environment.insert(u"WAYLAND_DISPLAY"_s, names.value(0));
    environment.insert(u"DISPLAY"_s, m_display);
    m_keyboard =
        home.begin(QStringLiteral(WAYLAND_KEYBOARD_PROGRAM), {u"--layouts"_s, options.layouts});
    home.firstLine(*m_keyboard);
}
