#include "desktop/HotkeyManager.h"
#include "fakes/FakePlatform.h"
#include "platform/qt/QtDispatch.h"
#include "platform/x11/X11EventSource.h"
#include "platform/x11/X11Hotkeys.h"
#include "preferences/RecorderWindow.h"
#include "stage/Actors.h"
#include "stage/JsonLines.h"
#include "stage/VirtualKeyboard.h"
#include "storage/Settings.h"

#include <QAbstractNativeEventFilter>
#include <QApplication>
#include <QShortcut>

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

    RecorderWindow window;
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

/// The recorder on a desktop with real keys.
class TestRecorderKeys : public QObject {
    Q_OBJECT

private Q_SLOTS:
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

    void hotkeysWorkWhileRecordingInTheBackground() {
        const VirtualDesktop desktop({.physicalKeyboard = true, .bus = false});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        StageProcess recorder(desktop.environment());
        QVERIFY(recorder.launch(QCoreApplication::applicationFilePath(), {"--recorder"}));
        QVERIFY(!recorder.waitForEvent("listening").isEmpty());
        PasteTarget front(desktop);
        QVERIFY2(waitFor([&] { return front.hasFocus(); }), qPrintable(front.errorString()));
        QVERIFY(!recorder.waitForEvent("installed", 1).isEmpty());
        VirtualKeyboard keyboard(desktop.keyboardDisplay());
        QVERIFY(keyboard.chord(
            {keyCode(KEY_LEFTCTRL), keyCode(KEY_LEFTALT), keyCode(KEY_LEFTMETA), keyCode(KEY_V)}));
        QVERIFY(!recorder.waitForEvent("fired").isEmpty());
        QVERIFY(recorder.events("stored").isEmpty());
    }
};

int main(int argc, char **argv) {
    if (argc > 1 && QByteArray(argv[1]) == "--recorder")
        return runRecorder(argc, argv);
    const QApplication application(argc, argv);
    TestRecorderKeys test;
    return QTest::qExec(&test, argc, argv);
}
#include "test_preferences_recorder_keys.moc"
