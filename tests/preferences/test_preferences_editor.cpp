#include "fakes/FakePlatform.h"
#include "preferences/kit/Chip.h"
#include "preferences/template/AutocompleteList.h"
#include "preferences/template/PlaceholderTextView.h"
#include "preferences/template/ResizeGrip.h"
#include "preferences/template/TemplateFieldBlock.h"
#include "stage/VirtualDesktop.h"
#include "stage/VirtualKeyboard.h"
#include "storage/Settings.h"

#include <QApplication>
#include <QProcess>
#include <QScreen>
#include <QShortcut>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <QWindow>

namespace {

/// A window with the editor of the Jira template, below which there is room for the popover.
struct Scene : FakePlatform {
    explicit Scene(const QString &text = "{key} ") {
        Settings::shared().displayTemplate = text;
        auto *column = new QVBoxLayout(&window);
        block =
            new TemplateFieldBlock(Settings::shared().displayTemplate, "standard",
                                   TemplateCatalog::placeholders(), TemplateField::Grip::Resizes);
        column->addWidget(block);
        column->addStretch();
        window.resize(460, 300);
        window.show();
        window.move(100, 20);
        field = block->findChild<TemplateField *>();
        view = field->textView();
        view->setFocus();
        QVERIFY(QTest::qWaitForWindowActive(&window, 15000));
        QTRY_VERIFY(view->hasFocus());
    }

    QString text() const { return Settings::shared().displayTemplate(); }
    void keys(const QString &text) { QTest::keyClicks(view, text); }
    void key(Qt::Key key) { QTest::keyClick(view, key); }
    void click(const QString &title) {
        for (auto *button : block->findChildren<QAbstractButton *>()) {
            if (button->text() == title)
                QTest::mouseClick(button, Qt::LeftButton);
        }
    }
    void drag(int from, int to) {
        auto *grip = field->findChild<ResizeGrip *>(); // moves along, so places are on the screen
        const QPoint start = grip->mapToGlobal(QPoint(6, 6));
        const auto at = [&](int y) { return grip->mapFromGlobal(start + QPoint(0, y)); };
        QTest::mousePress(grip, Qt::LeftButton, {}, at(0));
        QTest::mouseMove(grip, at(from));
        QTest::mouseMove(grip, at(to));
        QTest::mouseRelease(grip, Qt::LeftButton, {}, at(to));
    }

    QWidget window;
    TemplateFieldBlock *block;
    TemplateField *field;
    PlaceholderTextView *view;
};

} // namespace

class TestPreferencesEditor : public QObject {
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

    void chipsInsertAtTheCaretAndAreUndone() {
        Scene scene;
        struct Insertion {
            QString before, after;
            int caretAfter;
        };
        for (const auto &[before, after, caretAfter] :
             {Insertion{"ab", "a{type}b", 7}, Insertion{"{b", "{type}b", 6},
              Insertion{u"\U0001F41Bb"_qs, u"\U0001F41B{type}b"_qs, 8}}) {
            scene.view->setPlainText(before);
            scene.key(Qt::Key_Home);
            scene.key(Qt::Key_Right); // past an emoji, one character
            scene.click("{type}");
            QCOMPARE(scene.text(), after);
            scene.view->moveCursor(QTextCursor::Start);
            QTRY_COMPARE(scene.view->textCursor().position(), caretAfter); // in a later turn
            QVERIFY(scene.view->hasFocus());
            scene.view->undo();
            QCOMPARE(scene.text(), before);
        }

        scene.view->setPlainText("ab");
        scene.key(Qt::Key_End);
        scene.click("<i>");
        scene.click("</i>");
        QTRY_COMPARE(scene.view->textCursor().position(), 9);
        scene.keys("cd");
        for (const char *expected : {"ab<i></i>cd", "ab<i></i>", "ab<i>", "ab"}) {
            QCOMPARE(scene.text(), expected);
            scene.view->undo();
        }
    }

    void resetAndOutsideChangesPutTheCaretAtTheEnd() {
        Scene scene("some text");
        scene.view->moveCursor(QTextCursor::Start);
        scene.click("Reset");
        QCOMPARE(scene.text(), "standard");
        Settings::shared().displayTemplate = "x";
        scene.click("{key}");
        QCOMPARE(scene.text(), "x{key}");
    }

    void fieldGrowsWithItsTextAndNeverShrinks() {
        Scene scene("");
        scene.keys(QString(200, 'm'));
        QTRY_VERIFY(scene.field->fieldHeight() > 50);
        QCOMPARE(scene.field->fieldHeight(), scene.view->contentHeight());
        const int grown = scene.field->fieldHeight();
        scene.view->selectAll();
        scene.key(Qt::Key_Delete);
        QTRY_VERIFY(scene.view->contentHeight() < grown);
        QCoreApplication::processEvents();
        QCOMPARE(scene.field->fieldHeight(), grown);
    }

    void gripStopsAtItsLimits() {
        Scene scene;
        struct Drag {
            int from, to, height;
        };
        // The first is less than a drag.
        for (const Drag &drag :
             {Drag{5, 9, 22}, {20, 60, 82}, {5, 15, 97}, {100, 2000, 400}, {-100, -2000, 22}}) {
            scene.drag(drag.from, drag.to);
            QCOMPARE(scene.field->fieldHeight(), drag.height);
        }
        scene.drag(10, 20);
        QTest::keyClick(scene.field->findChild<ResizeGrip *>(), Qt::Key_Down);
        QCOMPARE(scene.field->fieldHeight(), 52);
    }

    void chipsWrapWithoutOverlapping() {
        Scene scene;
        QRegion taken;
        for (const auto *chip : scene.block->findChildren<Chip *>()) {
            QVERIFY(chip->parentWidget()->rect().contains(chip->geometry()));
            QVERIFY(!taken.intersects(chip->geometry()));
            taken += chip->geometry();
        }
        QVERIFY(taken.boundingRect().height() > 30);
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
    TestPreferencesEditor test;
    return QTest::qExec(&test, argc, argv);
}
#include "test_preferences_editor.moc"
