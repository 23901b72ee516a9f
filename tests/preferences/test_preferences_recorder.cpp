#include "desktop/HotkeyManager.h"
#include "fakes/FakePlatform.h"
#include "preferences/RecorderWindow.h"
#include "preferences/kit/Caption.h"
#include "preferences/kit/Style.h"
#include "stage/VirtualKeyboard.h"
#include "storage/Settings.h"

#include <QApplication>

namespace {

constexpr Qt::KeyboardModifiers ctrlAltSuper =
    Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;

/// The window on a desktop whose hotkey ⌃⌥⌘V is registered, with the focus in the other field.
struct Scene : FakePlatform {
    Scene() {
        const std::pair<int, quint32> keys[] = {
            {KEY_A, 0}, {KEY_J, 38}, {KEY_K, 40}, {KEY_V, 9}, {KEY_SPACE, 49}};
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
    /// The line below a row; empty while there is none.
    QString problem(const HotkeyRecorder &row) const {
        const auto *line = row.findChild<Caption *>();
        return line->isVisible() ? line->text() : QString();
    }
    /// What the application does to register the hotkeys of the settings.
    static void install() {
        const auto combo = [](RecordedHotkey hotkey) { return HotkeyRecording::stored(hotkey); };
        HotkeyManager::shared().install(
            {combo(RecordedHotkey::Primary), combo(RecordedHotkey::Alternate)}, [] {});
    }

    RecorderWindow window;
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

    void whatCannotBeAHotkeyIsSaid() {
        const QString unusable = " can't be used as a hotkey";
        const QString taken = " is taken by another program";
        for (const bool isPrimary : {true, false}) {
            Scene scene;
            const auto &row = isPrimary ? scene.window.primary : scene.window.alternate;
            const auto &other = isPrimary ? scene.window.alternate : scene.window.primary;
            const auto record = [&](int evdev) {
                click(button(row, 0));
                QCOMPARE(scene.problem(row), "");
                scene.press(evdev, ctrlAltSuper);
                scene.release(evdev);
                scene.install();
            };
            record(KEY_A);
            QCOMPARE(scene.problem(row), "⌃⌥⌘A" + unusable + ".");
            QVERIFY(scene.takeLog().contains("hotkey: ⌃⌥⌘A" + unusable));
            QVERIFY(Style::contrast(
                        row.findChild<Caption *>()->palette().color(QPalette::WindowText),
                        Style::colour(Style::ColourRole::Warning, scene.window.palette())) < 1.01);

            scene.hotkeys->taken = {{40, 6400}};
            record(KEY_K);
            QCOMPARE(scene.problem(row), "⌃⌥⌘K" + taken + ".");
            QVERIFY(scene.takeLog().contains("hotkey: ⌃⌥⌘K" + taken));
            scene.hotkeys->taken.clear();
            scene.install(); // it was given back
            QCOMPARE(scene.problem(row), "");
            record(KEY_J);
            QCOMPARE(scene.problem(row), "");
            QCOMPARE(scene.problem(other), "");
        }
        // One of an earlier session, with a button that says "Not set".
        Scene scene;
        Settings::shared().hotkey2Modifiers = 6400U;
        const HotkeyRecorder row(RecordedHotkey::Alternate);
        QVERIFY(row.findChild<Caption *>()->isHidden());
    }

    void onlyWhatChangedIsStored() {
        Scene scene;
        scene.defaults->stored.clear();
        click(button(scene.window.primary, 0));
        scene.press(KEY_V, ctrlAltSuper);
        QVERIFY2(scene.defaults->stored.isEmpty(),
                 qPrintable(scene.defaults->stored.keys().join(' ')));
        scene.release(KEY_V);
        click(button(scene.window.primary, 0));
        scene.press(KEY_K, ctrlAltSuper);
        QCOMPARE(scene.defaults->stored.keys(), QStringList("hotkeyKeyCode"));
        scene.release(KEY_K);
    }

    void returnIsForTheDefaultButton() {
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
            Scene scene;
            scene.window.primary.setFocus();
            const auto from = key == Qt::Key_Enter ? Qt::KeypadModifier : Qt::NoModifier;
            QTest::keyClick(&scene.window, key, from);
            QVERIFY2(HotkeyRecording::shared().current() == RecordedHotkey::Primary,
                     key == Qt::Key_Enter ? "the key pad" : "Return");
        }
    }

    void tooltipsSayWhatTheButtonsDo() {
        const Scene scene;
        QCOMPARE(button(scene.window.primary, 0)->toolTip(),
                 "Click, then press the key combination you want to use.");
        QCOMPARE(button(scene.window.primary, 1)->toolTip(), "Reset to ⌃⌥⌘V (the default hotkey).");
        QCOMPARE(button(scene.window.alternate, 0)->toolTip(),
                 "Click, then press a key combination. Useful when your laptop and external "
                 "keyboard have different modifier layouts.");
        QCOMPARE(button(scene.window.alternate, 1)->toolTip(), "Remove the alternate shortcut.");
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
};

QTEST_MAIN(TestRecorder)
#include "test_preferences_recorder.moc"
