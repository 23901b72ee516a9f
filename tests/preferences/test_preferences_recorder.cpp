#include "desktop/HotkeyManager.h"
#include "fakes/FakePlatform.h"
#include "platform/linux/QtDispatch.h"
#include "platform/linux/x11/KeyCodes.h"
#include "platform/linux/x11/X11Hotkeys.h"
#include "preferences/HotkeyRecorder.h"
#include "stage/JsonLines.h"
#include "stage/VirtualDesktop.h"
#include "stage/VirtualKeyboard.h"
#include "storage/Settings.h"

#include <QAbstractNativeEventFilter>
#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTest>
#include <QVBoxLayout>

namespace {

constexpr Qt::KeyboardModifiers ctrlAltSuper =
    Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;

/// The two rows in a window with something else to focus.
class Window : public QWidget {
public:
    Window() : column(this) {
        for (QWidget *part : std::initializer_list<QWidget *>{&primary, &alternate, &other})
            column.addWidget(part);
    }

    QVBoxLayout column;
    HotkeyRecorder primary{RecordedHotkey::Primary};
    HotkeyRecorder alternate{RecordedHotkey::Alternate};
    QLineEdit other;
};

QPushButton *button(const HotkeyRecorder &row, int place) {
    return row.findChildren<QPushButton *>().at(place);
}

void click(QPushButton *target) {
    QTest::mouseClick(target, Qt::LeftButton);
}

/// The window on a desktop whose hotkey ⌃⌥⌘V is registered, with the focus in the other field.
struct Scene : FakePlatform {
    Scene() {
        const std::pair<int, quint32> keys[] = {
            {KEY_J, 38}, {KEY_K, 40}, {KEY_V, 9}, {KEY_SPACE, 49}};
        for (const auto &[evdev, code] : keys)
            hotkeys->virtualKeys[static_cast<quint32>(keyCode(evdev))] = code;
        HotkeyManager::shared().install({{9, 6400}}, [] {});
        window.show();
        window.activateWindow();
        window.other.setFocus();
        isActive = QTest::qWaitForWindowActive(&window);
    }
    ~Scene() {
        if (const auto current = HotkeyRecording::shared().current())
            HotkeyRecording::shared().toggle(*current);
    }
    /// A key event as the desktop delivers it; whether it reached the field in focus.
    bool key(QEvent::Type type, int evdev, int key, Qt::KeyboardModifiers modifiers,
             bool isRepeat = false) {
        const auto scanCode = static_cast<quint32>(keyCode(evdev));
        const QString text = key < 0x80 && !modifiers ? QString(QChar(key)) : QString();
        QKeyEvent event(type, key, modifiers, scanCode, 0, 0, text, isRepeat);
        struct Witness : QObject {
            bool eventFilter(QObject *, QEvent *seen) override {
                saw = saw || seen->type() == QEvent::KeyPress || seen->type() == QEvent::KeyRelease;
                return false;
            }
            bool saw = false;
        } witness;
        window.other.installEventFilter(&witness);
        QCoreApplication::sendEvent(&window.other, &event);
        return witness.saw;
    }
    bool press(int evdev, int name, Qt::KeyboardModifiers modifiers) {
        const bool reached = key(QEvent::KeyPress, evdev, name, modifiers);
        dispatch->drain();
        return reached;
    }
    void release(int evdev, int name) {
        key(QEvent::KeyRelease, evdev, name, {});
        dispatch->advance(std::chrono::seconds(1));
    }
    QString title(const HotkeyRecorder &row) const { return button(row, 0)->text(); }

    Window window;
    bool isActive = false;
};

} // namespace

class TestRecorder : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keys_data() {
        QTest::addColumn<int>("evdev");
        QTest::addColumn<int>("key");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::addColumn<QString>("title"); // empty when the key is not for us
        const Qt::KeyboardModifiers none;
        QTest::newRow("all but shift") << KEY_K << int{Qt::Key_K} << ctrlAltSuper << "⌃⌥⌘K";
        QTest::newRow("shift and super")
            << KEY_SPACE << int{Qt::Key_Space}
            << Qt::KeyboardModifiers(Qt::ShiftModifier | Qt::MetaModifier) << "⇧⌘Space";
        QTest::newRow("shift alone")
            << KEY_J << int{Qt::Key_J} << Qt::KeyboardModifiers(Qt::ShiftModifier) << "⇧J";
        QTest::newRow("another layout") // the place counts, not the letter
            << KEY_J << int{Qt::Key_H} << Qt::KeyboardModifiers(Qt::AltModifier) << "⌥J";
        QTest::newRow("bare letter") << KEY_V << int{Qt::Key_V} << none << "";
        QTest::newRow("escape") << KEY_ESC << int{Qt::Key_Escape} << none << "";
        QTest::newRow("keypad only")
            << KEY_K << int{Qt::Key_K} << Qt::KeyboardModifiers(Qt::KeypadModifier) << "";
        QTest::newRow("modifier itself")
            << KEY_LEFTCTRL << int{Qt::Key_Control} << ctrlAltSuper << "";
        QTest::newRow("unknown key") << KEY_MUTE << int{Qt::Key_VolumeMute} << ctrlAltSuper << "";
    }
    void keys() {
        QFETCH(int, evdev);
        QFETCH(int, key);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        QFETCH(QString, title);
        for (const bool isPrimary : {true, false}) {
            Scene scene;
            const HotkeyRecorder &row = isPrimary ? scene.window.primary : scene.window.alternate;
            click(button(row, 0));
            QCOMPARE(scene.title(row), "Press keys…");
            QCOMPARE(scene.press(evdev, key, modifiers), title.isEmpty());
            scene.release(evdev, key);
            QCOMPARE(scene.title(row), title.isEmpty() ? "Press keys…" : title);
            const Settings &settings = Settings::shared();
            const QString stored = isPrimary ? settings.hotkeyDisplay() : settings.hotkey2Display();
            QCOMPARE(stored, !title.isEmpty() ? title : isPrimary ? "⌃⌥⌘V" : "Not set");
            QCOMPARE(button(row, 1)->isVisible(), isPrimary || !title.isEmpty());
            QCOMPARE(scene.app.hotkeyReinstalls, title.isEmpty() ? 0 : 1);
            QVERIFY(scene.press(KEY_V, Qt::Key_V, {}));
        }
    }

    void registeredHotkeysMakeRoom() {
        Scene scene;
        QVERIFY(scene.isActive);
        click(button(scene.window.primary, 0));
        QVERIFY(scene.hotkeys->registered.isEmpty());
        QVERIFY(!scene.press(KEY_V, Qt::Key_V, ctrlAltSuper));
        QCOMPARE(Settings::shared().hotkeyKeyCode(), 9U);
        // While the key is down its repeats are neither recorded nor fire anything.
        QVERIFY(!scene.key(QEvent::KeyPress, KEY_V, Qt::Key_V, ctrlAltSuper, true));
        scene.release(KEY_K, Qt::Key_K);
        scene.key(QEvent::KeyRelease, KEY_V, Qt::Key_V, ctrlAltSuper); // a repeat in disguise
        QVERIFY(!scene.press(KEY_V, Qt::Key_V, ctrlAltSuper));
        scene.dispatch->advance(std::chrono::seconds(1));
        QCOMPARE(scene.app.hotkeyReinstalls, 0);
        scene.release(KEY_V, Qt::Key_V);
        QCOMPARE(scene.app.hotkeyReinstalls, 1);
        QVERIFY(scene.press(KEY_V, Qt::Key_V, ctrlAltSuper)); // recording is over
    }

    void onlyOneIsRecordedAndResetAndClearEndIt() {
        Scene scene;
        Settings &settings = Settings::shared();
        QPushButton *primary = button(scene.window.primary, 0);
        QPushButton *alternate = button(scene.window.alternate, 0);
        click(primary);
        click(alternate);
        QCOMPARE(primary->text(), "⌃⌥⌘V");
        QCOMPARE(alternate->text(), "Press keys…");
        QCOMPARE(scene.app.hotkeyReinstalls, 0);
        click(alternate);
        QCOMPARE(alternate->text(), "Not set");
        QCOMPARE(scene.app.hotkeyReinstalls, 1); // back, unchanged
        QVERIFY(scene.press(KEY_K, Qt::Key_K, ctrlAltSuper));

        settings.hotkeyKeyCode = 40U;
        settings.hotkey2KeyCode = 49U;
        settings.hotkey2Modifiers = 768U;
        QCOMPARE(alternate->text(), "⇧⌘Space");
        click(alternate);
        click(button(scene.window.primary, 1));
        QCOMPARE(settings.hotkeyDisplay(), "⌃⌥⌘V");
        QCOMPARE(alternate->text(), "Press keys…"); // goes on
        click(button(scene.window.alternate, 1));
        QVERIFY(!settings.hotkey2IsSet());
        QCOMPARE(alternate->text(), "Not set");
        QVERIFY(!button(scene.window.alternate, 1)->isVisible());
    }

    void pausesOffTheScreen() {
        Scene scene;
        click(button(scene.window.primary, 0));
        scene.window.primary.hide();
        QCOMPARE(scene.app.hotkeyReinstalls, 1);
        QVERIFY(scene.press(KEY_K, Qt::Key_K, ctrlAltSuper));
        scene.window.primary.show();
        QCOMPARE(scene.title(scene.window.primary), "Press keys…");
        QVERIFY(!scene.press(KEY_K, Qt::Key_K, ctrlAltSuper));
        QCOMPARE(scene.title(scene.window.primary), "⌃⌥⌘K");
    }

    void returnPressesTheDefaultButton() {
        Scene scene;
        QVERIFY(scene.isActive);
        QTest::keyClick(&scene.window.other, Qt::Key_Return);
        QCOMPARE(scene.title(scene.window.primary), "Press keys…");
        button(scene.window.alternate, 0)->setFocus();
        QTest::keyClick(button(scene.window.alternate, 0), Qt::Key_Return);
        QCOMPARE(scene.title(scene.window.alternate), "Press keys…");
    }

    void everyKeyThatCanBeGrabbedCanBeRecorded() {
        int keys = 0;
        for (quint32 code = 0; code < 256; ++code) {
            if (const auto scanCode = KeyCodes::x11FromVirtual(code)) {
                ++keys;
                QCOMPARE(KeyCodes::virtualFromX11(*scanCode), code);
            }
        }
        QVERIFY(keys > 100);
        QCOMPARE(KeyCodes::virtualFromX11(0), std::nullopt);
        QCOMPARE(KeyCodes::virtualFromX11(8), std::nullopt);
    }

    void realKeys() {
        const VirtualDesktop desktop({.physicalKeyboard = true, .bus = false});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        StageProcess recorder(desktop.environment());
        QVERIFY(recorder.launch(QCoreApplication::applicationFilePath(), {"--recorder"}));
        QVERIFY(!recorder.waitForEvent("listening").isEmpty());
        VirtualKeyboard keyboard(desktop.keyboardDisplay());
        const QList<int> modifiers{keyCode(KEY_LEFTCTRL), keyCode(KEY_LEFTALT),
                                   keyCode(KEY_LEFTMETA)};
        const int j = keyCode(KEY_J);

        // The combination is registered, and a shortcut of the window as well.
        for (const int modifier : modifiers)
            QVERIFY(keyboard.press(modifier));
        QVERIFY(keyboard.press(j));
        QCOMPARE(recorder.waitForEvent("stored")["hotkey"].toString(), "⌃⌥⌘J");
        const int heldFor = 6; // three modifiers, the key and its repeats
        QVERIFY(!recorder.waitForEvent("pressed", heldFor).isEmpty());
        QVERIFY(recorder.events("fired").isEmpty());
        QVERIFY(keyboard.release(j));
        QVERIFY(!recorder.waitForEvent("installed", 1).isEmpty());
        QVERIFY(keyboard.tap(j));
        QVERIFY(!recorder.waitForEvent("fired").isEmpty());
        QVERIFY(recorder.events("shortcut").isEmpty());
        for (const int modifier : modifiers)
            QVERIFY(keyboard.release(modifier));
    }
};

namespace {

/// Installs the hotkey of the settings and tells of it.
class InstallingApp : public AppDelegate {
public:
    InstallingApp() { publish(); }
    void openPreferences() override {}
    void refreshStatusItemImage() override {}
    void reinstallHotkey() override {
        const Settings &settings = Settings::shared();
        HotkeyManager::shared().install({{settings.hotkeyKeyCode(), settings.hotkeyModifiers()}},
                                        [] { say("fired"); });
        say("installed");
    }
};

/// Tells of every key press that the server sends to the window, repeats included.
class PressWitness : public QAbstractNativeEventFilter {
public:
    bool nativeEventFilter(const QByteArray &, void *message, qintptr *) override {
        if ((static_cast<xcb_generic_event_t *>(message)->response_type & 0x7f) == XCB_KEY_PRESS)
            say("pressed");
        return false;
    }
};

/// The recorder on a real display, its ⌃⌥⌘J registered, recording.
int runRecorder(int &argc, char **argv) {
    const QApplication application(argc, argv);
    FakePlatform fakes;
    Platform platform = Platform::current();
    platform.dispatch = std::make_shared<QtDispatch>();
    const auto x11 = std::make_shared<X11Connection>();
    platform.hotkeys = std::make_shared<X11Hotkeys>(x11);
    Platform::install(platform);
    InstallingApp app;
    Settings &settings = Settings::shared();
    settings.hotkeyKeyCode = 38U;
    app.reinstallHotkey();

    Window window;
    const QShortcut shortcut(QKeySequence("Ctrl+Alt+Meta+J"), &window);
    QObject::connect(&shortcut, &QShortcut::activated, [] { say("shortcut"); });
    window.show();
    if (!QTest::qWaitForWindowActive(&window, 15000))
        return 1;
    click(button(window.primary, 0));
    QObject::connect(&HotkeyRecording::shared(), &HotkeyRecording::changed, [&] {
        say("stored", {{"hotkey", settings.hotkeyDisplay()}});
    });
    PressWitness witness;
    qApp->installNativeEventFilter(&witness);
    x11->sync(); // the server takes keys before it takes the hotkey away otherwise
    say("listening");
    return QApplication::exec();
}

} // namespace

int main(int argc, char **argv) {
    if (argc > 1 && QByteArray(argv[1]) == "--recorder")
        return runRecorder(argc, argv);
    const QApplication application(argc, argv);
    TestRecorder test;
    return QTest::qExec(&test, argc, argv);
}
#include "test_preferences_recorder.moc"
