#include "stage/XScreen.h"

using namespace Qt::StringLiterals;

namespace {

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

XScreen::XScreen(DesktopHome &home, const DesktopOptions &options) : m_home(home) {
    home.environment().insert(u"XDG_SESSION_TYPE"_s, u"x11"_s);
    home.environment().insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
    const QStringList common{u"-displayfd"_s, u"1"_s, u"-noreset"_s, u"-nolisten"_s, u"tcp"_s};
    m_outerDisplay =
        beginDisplay(u"Xvfb"_s, common + QStringList{u"-screen"_s, u"0"_s, u"1280x800x24"_s});
    m_display = m_outerDisplay;
    if (options.physicalKeyboard && home.problem().isEmpty()) {
        if (!stopAutoRepeat(m_outerDisplay))
            home.fail(u"Xvfb"_s, u"does not answer"_s);
        home.environment().insert(u"DISPLAY"_s, m_outerDisplay);
        m_display = beginDisplay(
            u"Xephyr"_s, common + QStringList{u"-no-host-grab"_s, u"-screen"_s, u"1280x800"_s});
    }
    home.environment().insert(u"DISPLAY"_s, m_display);
    if (!home.problem().isEmpty())
        return;
    if (options.physicalKeyboard)
        keepAwake();
    if (options.windowManager)
        beginWindowManager();
}

void XScreen::beginWindowManager() {
    const QString another = qEnvironmentVariable("BRINDLE_STAGE_WINDOW_MANAGER");
    m_windowManager = another.isEmpty() ? u"openbox"_s : u"sh"_s;
    m_home.begin(m_windowManager, another.isEmpty()
                                      ? QStringList{u"--sm-disable"_s, u"--config-file"_s,
                                                    m_home.write(u"openbox.xml"_s, openboxConfig)}
                                      : QStringList{u"-c"_s, another});
}

void XScreen::awaitReady() {
    if (m_windowManager.isEmpty())
        return;
    XConnection x(m_display);
    if (!waitFor([&] { return x.isValid() && obeys(x); }))
        m_home.fail(m_windowManager, u"does not manage the display"_s);
}

QString XScreen::beginDisplay(const QString &program, const QStringList &arguments) {
    const QString number = m_home.firstLine(*m_home.begin(program, arguments));
    return number.isEmpty() ? QString() : u':' + number;
}

// Xephyr may have read a key from the outer display and sleep on it until something wakes it.
void XScreen::keepAwake() {
    constexpr int often = 20; // milliseconds
    m_inner = std::make_unique<XConnection>(m_display);
    QObject::connect(&m_awake, &QTimer::timeout, [this] { m_inner->sync(); });
    m_awake.start(often);
}
