#include "platform/kde/FakeInputKeys.h"
#include "platform/kde/HeldModifiers.h"
#include "platform/kde/KGlobalAccelHotkeys.h"
#include "platform/kde/PlasmaFrontWindow.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/qt/QtDispatch.h"
#include "platform/wayland/WaylandEventSource.h"
#include "stage/Actors.h"
#include "stage/VirtualKeyboard.h"
#include "support/Unprivileged.h"

#include <QDBusMessage>
#include <QElapsedTimer>
#include <QLibraryInfo>
#include <QStandardPaths>

namespace {

constexpr quint32 ctrl = HotkeyFormat::controlKey;
constexpr quint32 alt = HotkeyFormat::optionKey;
constexpr quint32 shift = HotkeyFormat::shiftKey;
constexpr quint32 super = HotkeyFormat::cmdKey;
constexpr KeyCombo hotkey{9, ctrl | alt | super};

/// Another program that has a shortcut.
void take(const QDBusConnection &bus, int key) {
    const QStringList id{"org.example.other", "grab", "Other Program", "Grab It"};
    for (const QVariantList &call :
         {QVariantList{"doRegister", id},
          QVariantList{"setShortcut", id, QVariant::fromValue(QList<int>{key}), 6U}}) {
        QDBusMessage message = QDBusMessage::createMethodCall(
            "org.kde.kglobalaccel", "/kglobalaccel", "org.kde.KGlobalAccel", call[0].toString());
        message.setArguments(call.mid(1));
        bus.call(message);
    }
}

/// The service as a program of its own: Plasma 5's, else Plasma 6's, which is not in the PATH.
QString globalAccelProgram() {
    const QString older = QStandardPaths::findExecutable("kglobalaccel5");
    return older.isEmpty()
               ? QLibraryInfo::path(QLibraryInfo::LibrariesPath) + "/libexec/kglobalacceld"
               : older;
}

/// Hotkeys and what they tell.
struct Presses {
    explicit Presses(const QDBusConnection &bus)
        : hotkeys(std::make_unique<KGlobalAccelHotkeys>(bus)) {}

    /// What is refused, each as its key code and the reason.
    QStringList bind(const QList<KeyCombo> &all) {
        told.reset();
        hotkeys->bind(
            all, [this] { ++pressed; }, [this] { ++released; },
            [this](const QList<Hotkeys::Refusal> &refusals) {
                told.emplace();
                for (const auto &[combo, reason] : refusals)
                    told->append(QString::number(combo.keyCode) + ' ' + reason);
            });
        waitFor([&] { return told.has_value(); });
        return told.value_or(QStringList{"no outcome"});
    }

    std::unique_ptr<KGlobalAccelHotkeys> hotkeys;
    std::optional<QStringList> told;
    int pressed = 0;
    int released = 0;
};

} // namespace

/// On KWin, with the rights that an installed program has there.
class TestKde : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        QVERIFY2(m_desktop.problem().isEmpty(), qPrintable(m_desktop.problem()));
        m_desktop.join();
    }

    void eachCapabilityIsFound() {
        const Platform platform = makeLinuxPlatform();
        QCOMPARE(platform.choices,
                 (QStringList{"hotkeys: KGlobalAccel; not sway IPC (SWAYSOCK is not set)",
                              "paste keys: fake input; not virtual keyboard (the compositor offers "
                              "no virtual keyboard)",
                              "front window: Plasma's windows; not foreign toplevel (the "
                              "compositor tells no program what windows there are)",
                              "clipboard: data-control"}));
    }

    void hotkeyIsPressedOnceHoweverLongItIsHeld() {
        Presses presses(m_desktop.bus());
        QCOMPARE(presses.bind({hotkey}), QStringList());
        hold();
        QTRY_COMPARE(presses.pressed, 1);
        QVERIFY(presses.hotkeys->hold()->isHeld());
        QTest::qWait(1500); // KWin repeats after 600 ms
        QCOMPARE(presses.released, 0);
        letGo();
        QTRY_COMPARE(presses.released, 1);
        QVERIFY(!presses.hotkeys->hold()->isHeld());
        tap();
        QTRY_COMPARE(presses.released, 2);
        QCOMPARE(presses.pressed, 2);
    }

    void combinations_data() {
        QTest::addColumn<KeyCombo>("combo");
        QTest::addColumn<QList<int>>("keys");
        const auto row = [](const char *name, const KeyCombo &combo, const QList<int> &keys) {
            QTest::newRow(name) << combo << keys;
        };
        row("letter with Shift", {8, ctrl | shift}, {KEY_LEFTCTRL, KEY_LEFTSHIFT, KEY_C});
        row("digit", {18, ctrl | alt}, {KEY_LEFTCTRL, KEY_LEFTALT, KEY_1});
        row("digit with Shift", {18, ctrl | shift}, {KEY_LEFTCTRL, KEY_LEFTSHIFT, KEY_1});
        row("punctuation", {47, super}, {KEY_LEFTMETA, KEY_DOT});
        row("punctuation with Shift", {47, super | shift}, {KEY_LEFTMETA, KEY_LEFTSHIFT, KEY_DOT});
        row("function key", {111, ctrl | shift}, {KEY_LEFTCTRL, KEY_LEFTSHIFT, KEY_F12});
        row("arrow", {126, ctrl | alt | super}, {KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA, KEY_UP});
        row("space", {49, ctrl | alt}, {KEY_LEFTCTRL, KEY_LEFTALT, KEY_SPACE});
        row("Tab with Shift", {48, ctrl | alt | shift},
            {KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTSHIFT, KEY_TAB});
    }
    void combinations() {
        QFETCH(KeyCombo, combo);
        QFETCH(QList<int>, keys);
        Presses presses(m_desktop.bus());
        QCOMPARE(presses.bind({combo}), QStringList());
        hold(keys);
        letGo();
        QTRY_COMPARE(presses.pressed, 1);
        QTRY_COMPARE(presses.released, 1);
    }

    void conflictsNameTheirHolder() {
        constexpr int ctrlAltB = 0x0C000042;
        take(m_desktop.bus(), ctrlAltB);
        Presses presses(m_desktop.bus());
        const KeyCombo taken{11, ctrl | alt};
        const KeyCombo keypad{82, ctrl};
        QCOMPARE(presses.bind({taken, keypad, hotkey}),
                 (QStringList{"82 is on no key that KDE's shortcuts know",
                              "11 is taken by “Grab It” of Other Program"}));
        tap();
        QTRY_COMPARE(presses.pressed, 1);
        QVERIFY(presses.hotkeys->virtualKey(KEY_V + 8) == 9U);
        QVERIFY(!presses.hotkeys->virtualKey(KEY_KP0 + 8));
    }

    void whatIsGivenBackReachesTheApplication() {
        PasteTarget window(m_desktop);
        QTRY_VERIFY(window.hasFocus());
        Presses presses(m_desktop.bus());
        const KeyCombo ctrlV{9, ctrl};
        const auto pressCtrlV = [&] { m_keys.chord({keyCode(KEY_LEFTCTRL), keyCode(KEY_V)}); };
        QCOMPARE(presses.bind({hotkey, ctrlV}), QStringList());
        pressCtrlV();
        QTRY_COMPARE(presses.pressed, 1);
        QCOMPARE(presses.bind({ctrlV, hotkey}), QStringList());
        pressCtrlV();
        QTRY_COMPARE(presses.pressed, 2);
        presses.hotkeys->unbind();
        QVERIFY(waitFor([&] {
            pressCtrlV();
            return window.pasteCount() > 0;
        }));
        QCOMPARE(presses.bind({ctrlV}), QStringList());
        // The presses of the loop above may still be told.
        const int before = presses.pressed;
        pressCtrlV();
        QTRY_VERIFY(presses.pressed > before);
        presses.hotkeys.reset();
        const int last = presses.pressed;
        window.forgetEvents();
        QVERIFY(waitFor([&] {
            pressCtrlV();
            return window.pasteCount() > 0;
        }));
        QCOMPARE(presses.pressed, last);
    }

    /// As in a session on X11, where the service is a program of its own.
    void hotkeyComesBackWithTheService() {
        const VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        QProcessEnvironment environment = desktop.environment();
        environment.insert("XDG_CURRENT_DESKTOP", "KDE");
        const auto startService = [&] {
            auto service = std::make_unique<StageProcess>(environment);
            service->launch(globalAccelProgram(), {});
            return service;
        };
        const auto isThere = [&] { return KGlobalAccelHotkeys::problem(desktop.bus()).isEmpty(); };
        QCOMPARE(KGlobalAccelHotkeys::problem(desktop.bus()),
                 "org.kde.kglobalaccel is not on the bus");
        auto service = startService();
        QTRY_VERIFY(isThere());
        VirtualKeyboard keys(desktop);
        const auto press = [&] {
            return keys.chord({keyCode(KEY_LEFTCTRL), keyCode(KEY_LEFTALT), keyCode(KEY_LEFTMETA),
                               keyCode(KEY_V)});
        };
        Presses presses(desktop.bus());
        QCOMPARE(presses.bind({hotkey}), QStringList());
        const auto answers = [&] {
            const int before = presses.released;
            return waitFor([&] {
                press();
                return waitFor([&] { return presses.released > before; }, 500);
            });
        };
        QVERIFY(answers());
        service->kill();
        QTRY_VERIFY(!isThere());
        QVERIFY(press());
        service = startService();
        QVERIFY(answers());
    }

    void keysPasteIntoTheWindowInFront_data() {
        QTest::addColumn<TargetKind>("target");
        QTest::newRow("Qt") << TargetKind::Qt;
        QTest::newRow("GTK 3") << TargetKind::Gtk;
        QTest::newRow("foot") << TargetKind::Foot;
        QTest::newRow("XWayland") << TargetKind::XWayland;
    }
    void keysPasteIntoTheWindowInFront() {
        QFETCH(TargetKind, target);
        const auto wayland = connectToWayland();
        PlasmaFrontWindow front(wayland);
        const auto kind = [&] {
            auto found = FrontWindow::Kind::Unknown;
            front.find([&](FrontWindow::Kind told) { found = told; });
            return found;
        };
        const bool isTerminal = target == TargetKind::Foot;
        QTRY_COMPARE(kind(), FrontWindow::Kind::Unknown);
        auto window = std::make_unique<PasteTarget>(m_desktop, target);
        QTRY_VERIFY(window->hasFocus());
        QTRY_COMPARE(kind(),
                     isTerminal ? FrontWindow::Kind::Terminal : FrontWindow::Kind::Application);
        const ClipboardOwner owner(m_desktop, {{"text/plain;charset=utf-8", "é"}});
        QVERIFY(owner.ownsClipboard());
        FakeInputKeys keys(wayland, std::make_shared<HotkeyHold>(), std::make_shared<QtDispatch>());
        QCOMPARE(keys.access().reason, QString());
        std::optional<bool> pressed;
        keys.press({9, isTerminal}, [&](bool was) { pressed = was; });
        QTRY_COMPARE(pressed, true);
        const auto paste = window->waitForPaste();
        QVERIFY(paste);
        QCOMPARE(paste->text, "é");
        QCOMPARE(window->typed(), QString());
        window.reset();
        QTRY_COMPARE(kind(), FrontWindow::Kind::Unknown);
    }

    /// The hotkey's letter is let go of after that time, its modifiers a moment or later. KWin 6
    /// tells of the modifiers, so that they are waited for; with 5 only so long for the letter.
    void heldHotkeyIsWaitedFor_data() {
        QTest::addColumn<int>("heldFor");
        QTest::addColumn<int>("modifiersFor");
        QTest::addColumn<int>("notBefore");
        QTest::newRow("let go of") << 300 << 300 << 300;
        QTest::newRow("its modifiers stay") << 300 << 2000 << 300;
        QTest::newRow("held on") << 2000 << 2000 << 900;
    }
    void heldHotkeyIsWaitedFor() {
        QFETCH(int, heldFor);
        QFETCH(int, modifiersFor);
        QFETCH(int, notBefore);
        PasteTarget window(m_desktop);
        QTRY_VERIFY(window.hasFocus());
        const ClipboardOwner owner(m_desktop, {{"text/plain;charset=utf-8", "é"}});
        QVERIFY(owner.ownsClipboard());
        Presses presses(m_desktop.bus());
        QCOMPARE(presses.bind({hotkey}), QStringList());
        const auto wayland = connectToWayland();
        if (HeldModifiers::areTold(*wayland))
            notBefore = modifiersFor;
        FakeInputKeys keys(wayland, presses.hotkeys->hold(), std::make_shared<QtDispatch>());
        QElapsedTimer timer;
        timer.start();
        hold();
        QTRY_COMPARE(presses.pressed, 1);
        qint64 pressedAfter = -1;
        keys.settle([&] {
            pressedAfter = timer.elapsed();
            keys.press({}, [](bool) {});
        });
        QVERIFY(waitFor([&] { return timer.elapsed() >= heldFor; }));
        m_keys.release(keyCode(KEY_V));
        QVERIFY(waitFor([&] { return timer.elapsed() >= modifiersFor; }));
        letGo();
        const auto paste = window.waitForPaste();
        QVERIFY(paste);
        QCOMPARE(paste->via, "Ctrl+V");
        QVERIFY2(pressedAfter >= notBefore && pressedAfter < notBefore + 1200,
                 QByteArray::number(pressedAfter));
        QVERIFY(m_keys.tap(keyCode(KEY_A)));
        QTRY_COMPARE(window.typed(), "a"); // nothing is stuck
        QCOMPARE(window.pasteCount(), 1);
        QCOMPARE(presses.pressed, 1);
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

    VirtualDesktop m_desktop{{.kind = DesktopKind::KWin,
                              .grants = {{QCoreApplication::applicationFilePath(),
                                          "org_kde_kwin_fake_input,org_kde_kwin_keystate,"
                                          "org_kde_plasma_window_management"}}}};
    VirtualKeyboard m_keys{m_desktop};
};

UNPRIVILEGED_TEST_MAIN(TestKde)
#include "test_platform_kde.moc"
