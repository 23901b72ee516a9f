#include "contract/PasteboardContract.h"
#include "contract/XClipboardNeighbours.h"
#include "fakes/FakePlatform.h"
#include "platform/gnome/CustomKeybindings.h"
#include "platform/gnome/GnomeSettings.h"
#include "platform/gnome/KeyHolders.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/linux/ProbedKeys.h"
#include "platform/qt/QtDispatch.h"
#include "platform/x11/X11Backends.h"
#include "stage/VirtualKeyboard.h"
#include "support/Unprivileged.h"

#include <QTcpServer>

using namespace std::chrono_literals;

namespace {

constexpr quint32 ctrl = HotkeyFormat::controlKey;
constexpr quint32 alt = HotkeyFormat::optionKey;
constexpr quint32 super = HotkeyFormat::cmdKey;
constexpr KeyCombo hotkey{9, ctrl | alt | super};
constexpr KeyCombo other{8, ctrl | alt | super};

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

/// Hotkeys that run the real program, which tells the one that is running.
struct Presses {
    explicit Presses(Running &running)
        : hotkeys(QString("'%1' paste").arg(BRINDLE_PROGRAM), QDBusConnection::sessionBus(),
                  probe) {
        probe->isWanted = true;
        running.paste = [this] {
            ++told;
            hotkeys.pressedByCommand();
        };
    }

    /// What is refused, each as its key code and the reason.
    QStringList bind(const QList<KeyCombo> &all) {
        QStringList refused;
        hotkeys.bind(
            all, [this] { ++pressed; }, nullptr,
            [&](const QList<Hotkeys::Refusal> &refusals) {
                for (const auto &[combo, reason] : refusals)
                    refused.append(QString::number(combo.keyCode) + ' ' + reason);
            });
        return refused;
    }
    /// Presses until the desktop has learned of the shortcuts, and waits out what repeats.
    bool arrive(VirtualKeyboard &keys) {
        const bool arrived = waitFor([&] {
            keys.chord({keyCode(KEY_LEFTCTRL), keyCode(KEY_LEFTALT), keyCode(KEY_LEFTMETA),
                        keyCode(KEY_V)});
            return waitFor([&] { return told > 0; }, 500);
        });
        QTest::qWait(1000);
        return arrived;
    }

    std::shared_ptr<KeyProbe> probe = std::make_shared<KeyProbe>();
    CustomKeybindings hotkeys;
    int told = 0;
    int pressed = 0;
};

} // namespace

/// On GNOME Shell.
class TestGnome : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        QVERIFY2(m_desktop.problem().isEmpty(), qPrintable(m_desktop.problem()));
        m_desktop.join();
        QDBusConnection bus = QDBusConnection::sessionBus();
        QVERIFY(bus.registerObject("/org/ostrowind/brindle", &m_running,
                                   QDBusConnection::ExportAllSlots));
        QVERIFY(bus.registerService("org.ostrowind.brindle"));
    }

    void eachCapabilityIsFound() {
        const Platform platform = makeLinuxPlatform();
        QCOMPARE(
            platform.choices,
            (QStringList{
                "hotkeys: GNOME's custom shortcuts; not sway IPC (SWAYSOCK is not set); not "
                "KGlobalAccel (the desktop is not Plasma); not GlobalShortcuts portal "
                "(the desktop has no portal: org.freedesktop.portal.Desktop is not on the bus)",
                "paste keys: unavailable; not virtual keyboard (the compositor offers no virtual "
                "keyboard); not fake input (the compositor lets this program press no keys; KWin "
                "does when its desktop entry is installed); not RemoteDesktop portal "
                "(the desktop has no portal: org.freedesktop.portal.Desktop is not on the bus)",
                "front window: accessibility bus; not foreign toplevel (the compositor tells no "
                "program what windows there are); not Plasma's windows (the compositor does not "
                "tell this program what windows there are)",
                "clipboard: X11 selection; not data-control (the compositor offers no data-control "
                "protocol)"}));
    }

    void pasteboard_data() {
        QTest::addColumn<QString>("row");
        for (const QString &row : PasteboardContract::rows().keys())
            QTest::newRow(qPrintable(row)) << row;
    }
    void pasteboard() {
        QFETCH(QString, row);
        XClipboardNeighbours neighbours(m_desktop);
        const auto dispatch = std::make_shared<QtDispatch>();
        const auto make = [&] { return X11Backends(dispatch).pasteboardLater(); };
        QCOMPARE(PasteboardContract::rows()[row](make, neighbours), QString());
    }

    void xServerThatHangsIsGivenUp() {
        const QByteArray display = qgetenv("DISPLAY");
        QTcpServer hanging; // takes the connection and says nothing
        QVERIFY(hanging.listen(QHostAddress::LocalHost));
        constexpr int firstPort = 6000; // the display number counts from here
        qputenv("DISPLAY", "127.0.0.1:" + QByteArray::number(hanging.serverPort() - firstPort));
        const auto pasteboard = X11Backends(std::make_shared<QtDispatch>()).pasteboardLater();
        QCOMPARE(pasteboard->unavailableBecause(), QString());
        QVERIFY(!PasteboardContract::read(*pasteboard).items); // answered, in vain
        QCOMPARE(pasteboard->unavailableBecause(), "it did not answer within 2000 ms");
        qputenv("DISPLAY", display);
    }

    void hotkeyIsPressedOnceHoweverLongItIsHeld() {
        Presses presses(m_running);
        QCOMPARE(presses.bind({other, hotkey}), QStringList());
        QVERIFY(presses.arrive(m_keys));
        const int before = presses.pressed;
        presses.told = 0;
        hold();
        QTRY_VERIFY(presses.told > 10); // the key repeats
        letGo();
        QCOMPARE(presses.pressed, before + 1);
        QTest::qWait(1000); // a press that comes sooner could not be told from a repeat
        hold();
        letGo();
        QTRY_COMPARE(presses.pressed, before + 2);
    }

    void conflictsNameTheirHolder_data() {
        QTest::addColumn<QByteArray>("schema");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("binding");
        QTest::addColumn<QString>("refusal");
        const char *shell = "org.gnome.shell.keybindings";
        QTest::newRow("the shell's") << QByteArray(shell) << "toggle-message-tray"
                                     << "<Super><Primary><Mod1>V"
                                     << "9 is taken by GNOME’s shortcut “Keybinding to toggle the "
                                        "visibility of the notification list”";
        QTest::newRow("by its place") << QByteArray(shell) << "toggle-overview"
                                      << "<Alt><Control><Super>0x37"
                                      << "9 is taken by GNOME’s shortcut “Keybinding to open the "
                                         "overview”";
        QTest::newRow("another's") << QByteArray(KeyHolders::mediaKeys) << "custom-keybindings"
                                   << "<Control><Alt><Super>v"
                                   << "9 is taken by the custom shortcut “Mine”";
        QTest::newRow("one modifier more") << QByteArray(shell) << "toggle-overview"
                                           << "<Alt><Control><Super><Shift>v"
                                           << "";
    }
    void conflictsNameTheirHolder() {
        QFETCH(QByteArray, schema);
        QFETCH(QString, key);
        QFETCH(QString, binding);
        QFETCH(QString, refusal);
        const QString place = "/org/example/mine/";
        auto settings = GnomeSettings::open(schema);
        QVERIFY(settings);
        if (key == "custom-keybindings") {
            auto mine = GnomeSettings::open(KeyHolders::customKeybinding, place);
            mine->setText("name", "Mine");
            mine->setText("binding", binding);
            settings->setList(key, {place});
        } else {
            settings->setList(key, {binding});
        }
        {
            Presses presses(m_running);
            QCOMPARE(presses.bind({hotkey, other}).join(""), refusal);
            QCOMPARE(presses.bind({other}), QStringList()); // the same again is no conflict
        }
        // What was there stays as it was.
        QCOMPARE(settings->list(key), QStringList{key == "custom-keybindings" ? place : binding});
        settings->reset(key);
    }

    void keysAreUpWhenNoneIsHeld() {
        Presses presses(m_running);
        ProbedKeys keys(presses.probe, std::make_shared<HotkeyHold>(),
                        std::make_shared<QtDispatch>());
        const auto isUp = [&](int milliseconds) {
            auto up = std::make_shared<bool>(false);
            keys.await([&](int code) { m_keys.tap(keyCode(code)); }, [up] { *up = true; });
            return waitFor([up] { return *up; }, milliseconds);
        };
        QVERIFY(isUp(0)); // without its shortcut nothing is waited for
        QCOMPARE(presses.bind({hotkey}), QStringList());
        QVERIFY(presses.arrive(m_keys));
        QVERIFY(isUp(1500));
        for (const int modifier : {KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA}) {
            m_keys.press(keyCode(modifier));
            QVERIFY2(!isUp(1000), QByteArray::number(modifier)); // half of it passes untried
            letGo();
            QVERIFY2(isUp(1500), QByteArray::number(modifier));
        }
    }

    void aLateAnswerSaysNothingAboutTheNextKeys() {
        const auto clock = std::make_shared<ManualDispatch>();
        const auto probe = std::make_shared<KeyProbe>();
        ProbedKeys keys(probe, std::make_shared<HotkeyHold>(), clock);
        probe->isBound = true;
        QString events;
        const auto await = [&] {
            keys.await([&](int) { events += "tap "; }, [&] { events += "up "; });
        };
        await();
        clock->advance(30ms);
        probe->fired();
        QCOMPARE(events, "tap tap up ");
        await();
        clock->advance(499ms);
        probe->fired(); // the second tap's
        QCOMPARE(events, "tap tap up ");
        clock->advance(1ms);
        probe->fired();
        QCOMPARE(events, "tap tap up tap up ");
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

    VirtualDesktop m_desktop{{.kind = DesktopKind::Gnome}};
    VirtualKeyboard m_keys{m_desktop};
    Running m_running;
};

UNPRIVILEGED_TEST_MAIN(TestGnome)
#include "test_platform_gnome.moc"
