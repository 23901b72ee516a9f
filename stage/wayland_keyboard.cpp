// The keyboard of a Wayland desktop, there as long as this program runs. It takes lines of strokes
// on its input, +CODE for a press and -CODE for a release with the codes of
// linux/input-event-codes.h, and says "done" when the compositor has been told of a whole line.

#include "stage/CompositorConnection.h"
#include "stage/JsonLines.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>

#include <fake-input.h>
#include <virtual-keyboard-unstable-v1.h>

#include <chrono>
#include <linux/input-event-codes.h>
#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// The way a key goes into the compositor.
class Keys {
public:
    virtual ~Keys() = default;
    virtual void stroke(uint32_t code, bool isPress) = 0;
};

// As text that the compositor completes; a layout after the first is another group.
QByteArray keymap(const QStringList &layouts) {
    QByteArray symbols = "pc";
    for (qsizetype i = 0; i < layouts.size(); ++i)
        symbols += '+' + layouts[i].toLatin1() + (i > 0 ? ':' + QByteArray::number(i + 1) : "");
    return QByteArray(R"xkb(xkb_keymap {
  xkb_keycodes { include "evdev+aliases(qwerty)" };
  xkb_types { include "complete" };
  xkb_compat { include "complete" };
  xkb_symbols { include "SYMBOLS+inet(evdev)" };
};
)xkb")
        .replace("SYMBOLS", symbols);
}

/// A keyboard of its own on the seat, which has to say itself which modifiers its keys are.
class WlrootsKeys : public Keys {
public:
    WlrootsKeys(zwp_virtual_keyboard_manager_v1 *manager, wl_seat *seat, const QStringList &layouts)
        : m_keyboard(zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(manager, seat)) {
        const QByteArray text = keymap(layouts);
        const auto size = static_cast<size_t>(text.size() + 1); // with the zero at its end
        const int file = memfd_create("keymap", MFD_CLOEXEC);
        if (write(file, text.constData(), size) == static_cast<ssize_t>(size))
            zwp_virtual_keyboard_v1_keymap(m_keyboard, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file,
                                           static_cast<uint32_t>(size));
        close(file);
        // Only with its first key it becomes the keyboard of the seat.
        stroke(KEY_LEFTSHIFT, true);
        stroke(KEY_LEFTSHIFT, false);
    }

    void stroke(uint32_t code, bool isPress) override {
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        const auto time = static_cast<uint32_t>(
            std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
        zwp_virtual_keyboard_v1_key(m_keyboard, time, code,
                                    isPress ? WL_KEYBOARD_KEY_STATE_PRESSED
                                            : WL_KEYBOARD_KEY_STATE_RELEASED);
        const uint32_t modifier = modifierOf(code);
        if (modifier == 0)
            return;
        m_modifiers = isPress ? m_modifiers | modifier : m_modifiers & ~modifier;
        zwp_virtual_keyboard_v1_modifiers(m_keyboard, m_modifiers, 0, 0, 0);
    }

private:
    static uint32_t modifierOf(uint32_t code) {
        switch (code) {
        case KEY_LEFTSHIFT:
        case KEY_RIGHTSHIFT:
            return 1;
        case KEY_LEFTCTRL:
        case KEY_RIGHTCTRL:
            return 4;
        case KEY_LEFTALT:
            return 8;
        case KEY_LEFTMETA:
        case KEY_RIGHTMETA:
            return 64;
        default:
            return 0;
        }
    }

    zwp_virtual_keyboard_v1 *m_keyboard;
    uint32_t m_modifiers = 0;
};

/// Keys that KWin takes for those of a keyboard.
class KWinKeys : public Keys {
public:
    explicit KWinKeys(org_kde_kwin_fake_input *input) : m_input(input) {
        org_kde_kwin_fake_input_authenticate(input, "keyboard", "the keyboard of this desktop");
    }

    void stroke(uint32_t code, bool isPress) override {
        org_kde_kwin_fake_input_keyboard_key(m_input, code, isPress ? 1 : 0);
    }

private:
    org_kde_kwin_fake_input *m_input;
};

/// A device of a session that remote desktops open, where the shell asks nobody. Needs the bus.
class GnomeKeys : public Keys {
public:
    GnomeKeys() {
        const QDBusMessage made = call(rootPath, mutter, u"CreateSession"_s);
        m_session = made.arguments().value(0).value<QDBusObjectPath>().path();
        if (m_session.isEmpty() ||
            call(m_session, session, u"Start"_s).type() != QDBusMessage::ReplyMessage)
            m_session.clear();
    }

    bool isOpen() const { return !m_session.isEmpty(); }

    void stroke(uint32_t code, bool isPress) override {
        call(m_session, session, u"NotifyKeyboardKeycode"_s, {code, isPress});
    }

private:
    QDBusMessage call(const QString &path, const QString &interface, const QString &method,
                      const QVariantList &arguments = {}) {
        QDBusMessage message = QDBusMessage::createMethodCall(mutter, path, interface, method);
        message.setArguments(arguments);
        return m_bus.call(message);
    }

    const QString mutter = u"org.gnome.Mutter.RemoteDesktop"_s;
    const QString session = mutter + u".Session"_s;
    const QString rootPath = u"/org/gnome/Mutter/RemoteDesktop"_s;
    QDBusConnection m_bus = QDBusConnection::sessionBus();
    QString m_session;
};

std::unique_ptr<Keys> makeKeys(CompositorConnection &compositor, const QStringList &layouts) {
    if (void *manager = compositor.bind(zwp_virtual_keyboard_manager_v1_interface, 1))
        return std::make_unique<WlrootsKeys>(
            static_cast<zwp_virtual_keyboard_manager_v1 *>(manager), compositor.seat(), layouts);
    if (void *input = compositor.bind(org_kde_kwin_fake_input_interface, 4))
        return std::make_unique<KWinKeys>(static_cast<org_kde_kwin_fake_input *>(input));
    if (auto keys = std::make_unique<GnomeKeys>(); keys->isOpen())
        return keys;
    return nullptr;
}

// False if the line is not made of strokes.
bool obey(Keys &keys, const QByteArray &line) {
    for (const QByteArray &stroke : line.split(' ')) {
        bool isNumber = false;
        const uint32_t code = stroke.mid(1).toUInt(&isNumber);
        if (!isNumber || (stroke[0] != '+' && stroke[0] != '-'))
            return false;
        keys.stroke(code, stroke[0] == '+');
    }
    return true;
}

} // namespace

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addOption({u"layouts"_s, u"the first is in force"_s, u"names"_s, u"us"_s});
    parser.process(application);
    CompositorConnection compositor(CompositorConnection::socketOfEnvironment());
    if (!compositor.isValid() || !compositor.seat())
        return 1;
    const auto keys = makeKeys(compositor, parser.value(u"layouts"_s).split(u','));
    if (!keys || !compositor.sync()) {
        std::fprintf(stderr, "wayland_keyboard: the compositor takes no keys\n");
        return 1;
    }
    say(u"ready"_s);
    QByteArray pending;
    while (compositor.serve(QDeadlineTimer(QDeadlineTimer::Forever), STDIN_FILENO)) {
        pollfd input{STDIN_FILENO, POLLIN, 0};
        if (poll(&input, 1, 0) <= 0)
            continue;
        char buffer[4096];
        const ssize_t count = read(STDIN_FILENO, buffer, sizeof buffer);
        if (count <= 0)
            return 0;
        pending.append(buffer, count);
        for (qsizetype end = pending.indexOf('\n'); end >= 0; end = pending.indexOf('\n')) {
            const bool done = obey(*keys, pending.first(end)) && compositor.sync();
            say(u"done"_s, {{u"ok"_s, done}});
            pending.remove(0, end + 1);
        }
    }
    return 1;
}
