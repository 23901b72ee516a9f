#include "contract/PasteboardContract.h"
#include "platform/gnome/CustomKeybindings.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/linux/ProbedKeys.h"
#include "platform/qt/QtDispatch.h"
#include "platform/x11/X11Backends.h"
#include "stage/Actors.h"
#include "stage/ClipboardReader.h"
#include "stage/VirtualKeyboard.h"
#include "support/Unprivileged.h"

#include <QElapsedTimer>

namespace {

constexpr quint32 ctrl = HotkeyFormat::controlKey;
constexpr quint32 alt = HotkeyFormat::optionKey;
constexpr quint32 super = HotkeyFormat::cmdKey;
constexpr KeyCombo hotkey{9, ctrl | alt | super};
constexpr KeyCombo other{8, ctrl | alt | super};

/// Other programs at the clipboard, without a window of their own.
class Neighbours : public ClipboardNeighbours {
public:
    explicit Neighbours(const VirtualDesktop &desktop) : m_desktop(desktop) {}

    void copy(const QString &text, const QString &html) override {
        QList<OwnedFlavour> flavours{{"UTF8_STRING", text.toUtf8()}};
        if (!html.isEmpty())
            flavours.append({"text/html", html.toUtf8()});
        m_owner = std::make_unique<ClipboardOwner>(m_desktop, flavours);
    }
    QStringList paste() override {
        ClipboardReader reader(m_desktop.display());
        return {QString::fromUtf8(reader.data("UTF8_STRING").value_or("(nothing)")),
                QString::fromUtf8(reader.data("text/html").value_or("(nothing)"))};
    }

private:
    const VirtualDesktop &m_desktop;
    std::unique_ptr<ClipboardOwner> m_owner;
};

/// The running program, as `brindle paste` finds it.
class Running : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    std::function<void()> paste;

public Q_SLOTS:
    void ActivateAction(const QString &name, const QVariantList &, const QVariantMap &) {
        if (name == "enrich")
            paste();
    }
};

} // namespace

/// On GNOME Shell.
class TestGnome : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        QVERIFY2(m_desktop.problem().isEmpty(), qPrintable(m_desktop.problem()));
        for (const char *name : {"XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_CURRENT_DESKTOP",
                                 "WAYLAND_DISPLAY", "DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "HOME"})
            qputenv(name, m_desktop.environment().value(name).toLocal8Bit());
        QDBusConnection bus = QDBusConnection::sessionBus();
        QVERIFY(bus.registerObject("/org/ostrowind/brindle", &m_running,
                                   QDBusConnection::ExportAllSlots));
        QVERIFY(bus.registerService("org.ostrowind.brindle"));
    }

    void eachCapabilityIsFound() {
        const Platform platform = makeLinuxPlatform();
        QCOMPARE(platform.choices, QStringList());
    }

    void pasteboard_data() {
        QTest::addColumn<QString>("row");
        for (const QString &row : PasteboardContract::rows().keys())
            QTest::newRow(qPrintable(row)) << row;
    }
    void pasteboard() {
        QFETCH(QString, row);
        Neighbours neighbours(m_desktop);
        const auto dispatch = std::make_shared<QtDispatch>();
        const auto make = [&] { return *X11Backends(dispatch).pasteboard(); };
        QCOMPARE(PasteboardContract::rows()[row](make, neighbours), QString());
    }

    void firesOnceHoweverLongItIsHeld() {
        const auto probe = std::make_shared<KeyProbe>();
        ProbedKeys keys(probe, std::make_shared<QtDispatch>());
        CustomKeybindings hotkeys(QString("'%1' paste").arg(BRINDLE_PROGRAM),
                                  QDBusConnection::sessionBus(), probe);
        int presses = 0;
        int told = 0;
        m_running.paste = [&] {
            ++told;
            QVERIFY(hotkeys.pressedByCommand());
        };
        QStringList refused;
        hotkeys.bind(
            {hotkey, other}, [&] { ++presses; }, nullptr,
            [&](const QList<Hotkeys::Refusal> &all) {
                for (const auto &one : all)
                    refused.append(one.reason);
            });
        QCOMPARE(refused, QStringList());
        QVERIFY(waitFor([&] {
            tap();
            return waitFor([&] { return told > 0; }, 500);
        }));
        QTest::qWait(1000);
        presses = told = 0;
        QElapsedTimer timer;
        timer.start();
        hold();
        QVERIFY(waitFor([&] { return told > 0; }));
        qInfo("pressed after %lld ms", timer.elapsed());
        QTest::qWait(1500);
        letGo();
        QTest::qWait(300);
        qInfo("told %d", told);
        QCOMPARE(presses, 1);
        timer.restart();
        bool isUp = false;
        keys.await([&](int code) { m_keys.tap(code + 8); },
                   [&] {
                       isUp = true;
                       qInfo("up after %lld ms", timer.elapsed());
                   });
        QVERIFY(waitFor([&] { return isUp; }));
    }

private:
    void hold(const QList<int> &keys = {KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA, KEY_V}) {
        for (const int key : keys)
            m_keys.press(keyCode(key));
    }
    void letGo() {
        while (!m_keys.held().isEmpty())
            m_keys.release(m_keys.held().constLast());
    }
    void tap() {
        hold();
        letGo();
    }

    VirtualDesktop m_desktop{{.kind = DesktopKind::Gnome}};
    VirtualKeyboard m_keys{m_desktop};
    Running m_running;
};

UNPRIVILEGED_TEST_MAIN(TestGnome)
#include "test_platform_gnome.moc"
