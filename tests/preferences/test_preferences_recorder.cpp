#include "desktop/HotkeyManager.h"
#include "fakes/FakePlatform.h"
#include "platform/qt/QtDispatch.h"
#include "platform/x11/X11EventSource.h"
#include "platform/x11/X11Hotkeys.h"
#include "preferences/hotkey/HotkeyRecorder.h"
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

namespace {

constexpr Qt::KeyboardModifiers ctrlAltSuper =
    Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;

/// Takes every key that is left to it.
struct Field : QLineEdit {
    using QLineEdit::QLineEdit;
    void keyPressEvent(QKeyEvent *) override { ++keys; }
    int keys = 0;
};

/// The two rows in a window with something else to focus.
struct Window : QWidget {
    HotkeyRecorder primary{RecordedHotkey::Primary, this};
    HotkeyRecorder alternate{RecordedHotkey::Alternate, this};
    Field other{this};
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
        QVERIFY(QTest::qWaitForWindowActive(&window));
    }
    ~Scene() {
        if (const auto current = HotkeyRecording::shared().current())
            HotkeyRecording::shared().toggle(*current);
    }
    /// A key event as the desktop delivers it; whether it reached the field in focus.
    bool key(QEvent::Type type, int evdev, Qt::KeyboardModifiers modifiers, bool isRepeat = false) {
        // The place counts, not the letter of the layout.
        QKeyEvent event(type, Qt::Key_A, modifiers, static_cast<quint32>(keyCode(evdev)), 0, 0, {},
                        isRepeat);
        const int before = window.other.keys;
        QCoreApplication::sendEvent(&window.other, &event);
        return window.other.keys > before;
    }
    bool press(int evdev, Qt::KeyboardModifiers modifiers = {}) {
        const bool reached = key(QEvent::KeyPress, evdev, modifiers);
        dispatch->drain();
        return reached;
    }
    void release(int evdev) {
        key(QEvent::KeyRelease, evdev, {});
        dispatch->advance(std::chrono::seconds(1));
    }
    QString title(const HotkeyRecorder &row) const { return button(row, 0)->text(); }

    Window window;
};

} // namespace

class TestRecorder : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keysAreRecordedOrLeftAlone() {
        struct Key {
            int evdev;
            Qt::KeyboardModifiers modifiers;
            QString title; ///< empty when the key is not for us
        };
        for (const auto &[evdev, modifiers, title] :
             {Key{KEY_K, ctrlAltSuper, "⌃⌥⌘K"},
              Key{KEY_SPACE, Qt::ShiftModifier | Qt::MetaModifier, "⇧⌘Space"},
              Key{KEY_J, Qt::ShiftModifier, "⇧J"}, Key{KEY_V, Qt::KeypadModifier, ""},
              Key{KEY_MUTE, ctrlAltSuper, ""}}) {
            for (const bool isPrimary : {true, false}) {
                Scene scene;
                const auto &row = isPrimary ? scene.window.primary : scene.window.alternate;
                click(button(row, 0));
                QCOMPARE(scene.press(evdev, modifiers), title.isEmpty());
                scene.release(evdev);
                QCOMPARE(scene.title(row), title.isEmpty() ? "Press keys…" : title);
                QCOMPARE(button(row, 1)->isVisible(), isPrimary || !title.isEmpty());
                QCOMPARE(scene.app.hotkeyReinstalls, title.isEmpty() ? 0 : 1);
                QVERIFY(scene.press(KEY_V));
            }
        }
    }

    void registeredHotkeysMakeRoom() {
        Scene scene;
        click(button(scene.window.primary, 0));
        QVERIFY(scene.hotkeys->registered.isEmpty());
        QVERIFY(!scene.press(KEY_V, ctrlAltSuper));
        QCOMPARE(Settings::shared().hotkeyKeyCode(), 9U);
        // While the key is down its repeats are neither recorded nor fire anything.
        QVERIFY(!scene.key(QEvent::KeyPress, KEY_V, ctrlAltSuper, true));
        scene.release(KEY_K);
        scene.key(QEvent::KeyRelease, KEY_V, ctrlAltSuper); // a repeat in disguise
        QVERIFY(!scene.press(KEY_V, ctrlAltSuper));
        scene.dispatch->advance(std::chrono::seconds(1));
        QCOMPARE(scene.app.hotkeyReinstalls, 0);
        scene.release(KEY_V);
        QCOMPARE(scene.app.hotkeyReinstalls, 1);
        QVERIFY(scene.press(KEY_V, ctrlAltSuper)); // recording is over
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
        alternate->setFocus();
        QTest::keyClick(alternate, Qt::Key_Return); // not for the default button
        QCOMPARE(alternate->text(), "Not set");
        QCOMPARE(scene.app.hotkeyReinstalls, 1); // back, unchanged
        QVERIFY(scene.press(KEY_K, ctrlAltSuper));

        settings.hotkeyKeyCode = 40U;
        settings.hotkey2KeyCode = 49U;
        settings.hotkey2Modifiers = 768U;
        QCOMPARE(alternate->text(), "⇧⌘Space");
        click(alternate);
        click(button(scene.window.primary, 1));
        QCOMPARE(primary->text(), "⌃⌥⌘V");
        QCOMPARE(alternate->text(), "Press keys…"); // goes on
        click(button(scene.window.alternate, 1));
        QCOMPARE(alternate->text(), "Not set");
    }

    void pausesOffTheScreen() {
        Scene scene;
        click(button(scene.window.primary, 0));
        scene.window.primary.hide();
        QCOMPARE(scene.app.hotkeyReinstalls, 1);
        QVERIFY(scene.press(KEY_K, ctrlAltSuper));
        scene.window.primary.show();
        QCOMPARE(scene.title(scene.window.primary), "Press keys…");
        QVERIFY(!scene.press(KEY_K, ctrlAltSuper));
        QCOMPARE(scene.title(scene.window.primary), "⌃⌥⌘K");
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
        const int v = keyCode(KEY_V);

        // The combination is registered, and a shortcut of the window as well.
        for (const int modifier : modifiers)
            QVERIFY(keyboard.press(modifier));
        QVERIFY(keyboard.press(v));
        QCOMPARE(recorder.waitForEvent("stored")["hotkey"].toString(), "⌃⌥⌘V");
        const int heldFor = 6; // three modifiers, the key and its repeats
        QVERIFY(!recorder.waitForEvent("pressed", heldFor).isEmpty());
        QVERIFY(recorder.events("fired").isEmpty());
        QVERIFY(keyboard.release(v));
        QVERIFY(!recorder.waitForEvent("installed", 1).isEmpty());
        QVERIFY(keyboard.tap(v));
        QVERIFY(!recorder.waitForEvent("fired").isEmpty());
        QVERIFY(recorder.events("shortcut").isEmpty());
        for (const int modifier : modifiers)
            QVERIFY(keyboard.release(modifier));
    }
};

namespace {

/// Installs the hotkey of the settings and tells of it.
class InstallingApp : public FakeApp {
public:
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

/// The recorder on a real display, its ⌃⌥⌘V registered, recording.
int runRecorder(int &argc, char **argv) {
    const QApplication application(argc, argv);
    FakePlatform fakes;
    Platform platform = Platform::current();
    platform.dispatch = std::make_shared<QtDispatch>();
    const auto x11 = connectToX11();
    platform.hotkeys = std::make_shared<X11Hotkeys>(x11);
    Platform::install(platform);
    InstallingApp app;
    app.reinstallHotkey();

    Window window;
    const QShortcut shortcut(QKeySequence("Ctrl+Alt+Meta+V"), &window);
    QObject::connect(&shortcut, &QShortcut::activated, [] { say("shortcut"); });
    window.show();
    if (!QTest::qWaitForWindowActive(&window, 15000))
        return 1;
    click(button(window.primary, 0));
    QObject::connect(&HotkeyRecording::shared(), &HotkeyRecording::changed, [] {
        say("stored", {{"hotkey", Settings::shared().hotkeyDisplay()}});
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
