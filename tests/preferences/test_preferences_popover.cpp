#include "preferences/EditorScene.h"
#include "preferences/kit/SlimScrollBar.h"
#include "stage/VirtualDesktop.h"
#include "stage/VirtualKeyboard.h"

#include <QApplication>
#include <QLineEdit>
#include <QProcess>
#include <QScreen>
#include <QShortcut>
#include <QSignalSpy>
#include <QWindow>

using Scene = EditorScene;

class TestPreferencesPopover : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void onADisplay() {
        const VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        StageProcess test(desktop.environment());
        QVERIFY(test.launch(QCoreApplication::applicationFilePath(), {"--on-a-display"}));
        QVERIFY(waitFor([&] { return test.state() == QProcess::NotRunning; }, 120000));
        QVERIFY2(test.exitStatus() == QProcess::NormalExit && test.exitCode() == 0,
                 qPrintable(test.lines().join('\n')));
    }

    void popoverFollowsTheBrace() {
        Scene scene;
        scene.keys("{");
        const AutocompleteList *first = scene.field->popover();
        scene.keys("{");
        scene.key(Qt::Key_Left);
        QCOMPARE(scene.field->popover(), first); // neither reopened nor replaced
        scene.key(Qt::Key_End);
        scene.keys("k");
        QVERIFY(!scene.field->popover());
        scene.key(Qt::Key_Left); // the caret alone changes nothing
        QVERIFY(!scene.field->popover());
        scene.key(Qt::Key_End);
        scene.key(Qt::Key_Backspace);
        QVERIFY(scene.field->popover());
        const QShortcut escape(Qt::Key_Escape, &scene.window);
        QSignalSpy escapes(&escape, &QShortcut::activated);
        scene.key(Qt::Key_Escape);
        QVERIFY(!scene.field->popover() && escapes.isEmpty());
        scene.key(Qt::Key_Escape);
        QCOMPARE(escapes.size(), 1); // not for the editor
        scene.key(Qt::Key_Backspace);
        scene.key(Qt::Key_Return);
        QTest::keyClick(scene.view, Qt::Key_Enter, Qt::ShiftModifier);
        QCOMPARE(scene.text(), "{key} {"); // one line, unless pasted
        QVERIFY(scene.field->popover());
        QTest::mouseClick(&scene.window, Qt::LeftButton, {}, QPoint(5, 290));
        QVERIFY(!scene.field->popover());
        scene.view->insertPlainText("\nx");
        QCOMPARE(scene.text(), "{key} {\nx");
    }

    void popoverLivesAsLongAsItsFieldIsEdited() {
        struct End {
            const char *name;
            std::function<void(Scene &)> come;
        };
        QWidget other;
        for (const End &end : {
                 End{"Tab", [](Scene &scene) { scene.key(Qt::Key_Tab); }},
                 End{"Shift+Tab",
                     [](Scene &scene) {
                         QTest::keyClick(scene.view, Qt::Key_Tab, Qt::ShiftModifier);
                     }},
                 End{"another tab", [](Scene &scene) { scene.block->hide(); }},
                 End{"another window",
                     [&](Scene &) {
                         other.show();
                         other.activateWindow();
                         QVERIFY(QTest::qWaitForWindowActive(&other));
                     }},
                 End{"closed window", [](Scene &scene) { scene.window.close(); }},
                 End{"another template", [](Scene &) { Settings::shared().displayTemplate = "x"; }},
             }) {
            Scene scene;
            auto *neighbour = new QLineEdit(&scene.window);
            neighbour->show();
            scene.keys("{");
            QVERIFY2(scene.field->popover(), end.name);
            end.come(scene);
            QVERIFY2(!scene.field->popover(), end.name);
            other.hide();
        }
    }

    void popoverLeavesTheBraceToBeSeen() {
        Scene scene;
        scene.keys("{");
        const int whole = 16 * 28 + 16;
        QCOMPARE(scene.field->popover()->size(), QSize(260, whole));
        scene.key(Qt::Key_Escape);
        scene.key(Qt::Key_Backspace);
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        scene.window.move(100, screen.height() / 2); // too little room on either side
        scene.keys("{");
        const QRect place = scene.field->popover()->geometry();
        QVERIFY(screen.contains(place));
        QVERIFY(!place.intersects(scene.view->unitRect(6)));
        QVERIFY(place.height() < whole && place.height() > 8 * 28);
        const auto bars = scene.field->popover()->findChildren<SlimScrollBar *>();
        QTRY_VERIFY(bars.size() == 1 && bars[0]->isVisible());
    }
};

/// What depends on a window manager and on real keys and clicks.
class TestOnADisplay : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void popoverHangsAtTheBraceWhileTypingGoesOn() {
        Scene scene("");
        VirtualKeyboard hands(qEnvironmentVariable("DISPLAY"));
        hands.tap(keyCode(KEY_A));
        hands.chord({keyCode(KEY_LEFTSHIFT), keyCode(KEY_LEFTBRACE)});
        QTRY_VERIFY(scene.field->popover());
        const QRect place = scene.field->popover()->geometry();
        const QRect brace = scene.view->unitRect(1);
        QVERIFY(place.top() > brace.bottom() && place.top() < brace.bottom() + 10);
        QVERIFY(qAbs(place.center().x() - brace.center().x()) <= 1);
        hands.tap(keyCode(KEY_K));
        QTRY_COMPARE(scene.text(), "a{k");
        QVERIFY(!scene.field->popover());
        hands.tap(keyCode(KEY_BACKSPACE));
        QTRY_VERIFY(scene.field->popover());
        const QPoint row = scene.field->popover()->mapToGlobal(QPoint(40, 6 + 3 * 28 + 14));
        QTest::qWait(0);
        QCOMPARE(QProcess::execute("xdotool", {"mousemove", QString::number(row.x()),
                                               QString::number(row.y()), "click", "1"}),
                 0);
        QTRY_COMPARE(scene.text(), "a{summary}");
        QVERIFY(!scene.field->popover());
        hands.tap(keyCode(KEY_Z));
        QTRY_COMPARE(scene.text(), "a{summary}z"); // the keyboard never left the text

        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        scene.window.move(screen.right() - 100, screen.bottom() - 200);
        QTRY_VERIFY(scene.window.x() > screen.right() - 200);
        scene.keys("{");
        QVERIFY(scene.field->popover());
        QTRY_VERIFY(scene.field->popover()->windowHandle()->isExposed());
        QVERIFY(screen.contains(scene.field->popover()->geometry()));
        QVERIFY(scene.field->popover()->geometry().bottom() < scene.view->unitRect(11).top());
    }
};

int main(int argc, char **argv) {
    const QApplication application(argc, argv);
    if (argc > 1 && QByteArray(argv[1]) == "--on-a-display") {
        TestOnADisplay test;
        return QTest::qExec(&test);
    }
    TestPreferencesPopover test;
    return QTest::qExec(&test, argc, argv);
}
#include "test_preferences_popover.moc"
