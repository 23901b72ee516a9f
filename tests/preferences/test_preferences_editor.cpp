#include "fakes/FakePlatform.h"
#include "preferences/AutocompleteList.h"
#include "preferences/PlaceholderTextView.h"
#include "preferences/ResizeGrip.h"
#include "preferences/TemplateFieldBlock.h"
#include "preferences/kit/Chip.h"
#include "preferences/kit/FlowLayout.h"
#include "stage/VirtualDesktop.h"
#include "stage/VirtualKeyboard.h"
#include "storage/Settings.h"

#include <QApplication>
#include <QProcess>
#include <QScreen>
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
    }

    bool isReady() {
        return QTest::qWaitForWindowActive(&window, 15000) &&
               QTest::qWaitFor([this] { return view->hasFocus(); }, 15000);
    }
    QString text() const { return Settings::shared().displayTemplate(); }
    void keys(const QString &text) { QTest::keyClicks(view, text); }
    void key(Qt::Key key) { QTest::keyClick(view, key); }
    void setCaret(int position) {
        QTextCursor cursor = view->textCursor();
        cursor.setPosition(position);
        view->setTextCursor(cursor);
    }
    void click(const QString &title, const QWidget *parent) {
        for (auto *button : parent->findChildren<QAbstractButton *>()) {
            if (button->text() == title) {
                QTest::mouseClick(button, Qt::LeftButton);
                return;
            }
        }
        QFAIL(qPrintable("no button " + title));
    }
    void drag(int from, int to) {
        auto *grip = field->findChild<ResizeGrip *>();
        const QPoint start = grip->mapToGlobal(QPoint(6, 6));
        const auto send = [&](QEvent::Type type, int y) {
            const QPointF global = start + QPoint(0, y);
            QMouseEvent event(type, grip->mapFromGlobal(global), global, Qt::LeftButton,
                              Qt::LeftButton, {});
            QCoreApplication::sendEvent(grip, &event);
        };
        send(QEvent::MouseButtonPress, 0);
        send(QEvent::MouseMove, from);
        send(QEvent::MouseMove, to);
        send(QEvent::MouseButtonRelease, to);
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
        QVERIFY(scene.isReady());
        scene.keys("{");
        const AutocompleteList *first = scene.field->popover();
        scene.keys("{");
        QCOMPARE(scene.field->popover(), first); // neither reopened nor replaced
        scene.key(Qt::Key_Left);
        scene.key(Qt::Key_Left);
        QCOMPARE(scene.field->popover(), first); // the caret alone changes nothing
        scene.key(Qt::Key_End);
        scene.keys("k");
        QVERIFY(!scene.field->popover());
        scene.key(Qt::Key_Left);
        QVERIFY(!scene.field->popover());
        scene.key(Qt::Key_End);
        scene.key(Qt::Key_Backspace);
        QVERIFY(scene.field->popover());
        scene.key(Qt::Key_Escape);
        QVERIFY(!scene.field->popover());
        QCOMPARE(scene.text(), "{key} {{");
        scene.key(Qt::Key_Backspace);
        QVERIFY(scene.field->popover());
        QTest::mouseClick(&scene.window, Qt::LeftButton, {}, QPoint(5, 290));
        QVERIFY(!scene.field->popover());
    }

    void returnNeverBreaksTheLineAndEscapeIsPassedOn() {
        struct Catcher : QObject {
            bool eventFilter(QObject *, QEvent *event) override {
                if (event->type() == QEvent::KeyPress)
                    escapes += static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape;
                return false;
            }
            int escapes = 0;
        } catcher;
        Scene scene;
        QVERIFY(scene.isReady());
        scene.window.installEventFilter(&catcher);
        scene.key(Qt::Key_Return);
        scene.keys("{");
        QTest::keyClick(scene.view, Qt::Key_Enter, Qt::ShiftModifier);
        QCOMPARE(scene.text(), "{key} {");
        QVERIFY(scene.field->popover());
        scene.key(Qt::Key_Escape);
        QCOMPARE(catcher.escapes, 0); // it closed the popover
        scene.key(Qt::Key_Escape);
        QCOMPARE(catcher.escapes, 1);
        scene.view->insertPlainText("\nx");
        QCOMPARE(scene.text(), "{key} {\nx");
    }

    void chipsInsertAtTheCaret_data() {
        QTest::addColumn<QString>("before");
        QTest::addColumn<int>("caret");
        QTest::addColumn<QString>("after");
        QTest::addColumn<int>("caretAfter");
        QTest::newRow("middle") << "ab" << 1 << "a{type}b" << 7;
        QTest::newRow("start") << "ab" << 0 << "{type}ab" << 6;
        QTest::newRow("brace") << "a{b" << 2 << "a{type}b" << 7;
        QTest::newRow("past an emoji") << u"\U0001F41Bb"_qs << 2 << u"\U0001F41B{type}b"_qs << 8;
    }
    void chipsInsertAtTheCaret() {
        QFETCH(QString, before);
        QFETCH(int, caret);
        QFETCH(QString, after);
        QFETCH(int, caretAfter);
        Scene scene(before);
        QVERIFY(scene.isReady());
        scene.setCaret(caret);
        scene.click("{type}", scene.block);
        QCOMPARE(scene.text(), after);
        scene.view->moveCursor(QTextCursor::Start);
        QTRY_COMPARE(scene.view->textCursor().position(), caretAfter); // restored in a later turn
        QVERIFY(scene.view->hasFocus());
        scene.view->undo();
        QCOMPARE(scene.text(), before);
    }

    void typingAndChipAreUndoneOneByOne() {
        Scene scene("");
        QVERIFY(scene.isReady());
        scene.keys("ab");
        scene.click("<i>", scene.block);
        scene.click("</i>", scene.block);
        QTRY_COMPARE(scene.view->textCursor().position(), 9);
        scene.keys("cd");
        QCOMPARE(scene.text(), "ab<i></i>cd");
        for (const char *expected : {"ab<i></i>", "ab<i>", "ab", ""}) {
            scene.view->undo();
            QCOMPARE(scene.text(), expected);
        }
    }

    void resetAndOutsideChangesPutTheCaretAtTheEnd() {
        Scene scene("some text");
        QVERIFY(scene.isReady());
        scene.setCaret(2);
        scene.click("Reset", scene.block);
        QCOMPARE(scene.text(), "standard");
        QCOMPARE(scene.view->toPlainText(), "standard");
        QCOMPARE(defaultsText(scene), "standard");
        QCOMPARE(scene.view->textCursor().position(), 8);
        Settings::shared().displayTemplate = "x";
        QCOMPARE(scene.view->toPlainText(), "x");
        scene.click("{key}", scene.block);
        QCOMPARE(scene.text(), "x{key}");
    }

    void fieldGrowsWithItsTextAndNeverShrinks() {
        Scene scene("");
        QVERIFY(scene.isReady());
        QCOMPARE(scene.field->fieldHeight(), 22);
        QVERIFY(scene.view->contentHeight() >= 18);
        QCOMPARE(scene.view->placeholderText(), "{key} - {TYPE} - {summary}");
        scene.keys(QString(200, 'm'));
        QTRY_VERIFY(scene.field->fieldHeight() > 50);
        QCOMPARE(scene.field->fieldHeight(), scene.view->contentHeight());
        const int grown = scene.field->fieldHeight();
        scene.view->selectAll();
        scene.key(Qt::Key_Delete);
        QTest::qWait(0);
        QCOMPARE(scene.field->fieldHeight(), grown);
        QVERIFY(scene.view->contentHeight() < grown);
    }

    void gripStopsAtItsLimits() {
        Scene scene;
        QVERIFY(scene.isReady());
        struct Drag {
            int from, to, height;
        };
        for (const Drag &drag : {Drag{5, 9, 22}, // less than a drag
                                 {20, 60, 82},
                                 {5, 15, 97},
                                 {100, 2000, 400},
                                 {-100, -2000, 22}}) {
            scene.drag(drag.from, drag.to);
            QCOMPARE(scene.field->fieldHeight(), drag.height);
        }
        scene.keys(QString(200, 'm'));
        QTRY_VERIFY(scene.field->fieldHeight() > 50);
        const int grown = scene.field->fieldHeight();
        const auto *grip = scene.field->findChild<ResizeGrip *>();
        QTest::keyClick(scene.field->findChild<ResizeGrip *>(), Qt::Key_Down);
        QCOMPARE(scene.field->fieldHeight(), grown + 10);
        QCOMPARE(grip->geometry().bottomRight(), scene.field->rect().bottomRight() - QPoint(4, 4));
    }

    void flowLayoutWrapsLines() {
        QWidget row;
        auto *flow = new FlowLayout(&row);
        QList<QWidget *> boxes;
        for (const QSize size : {QSize(40, 10), QSize(50, 20), QSize(30, 10), QSize(150, 10)}) {
            boxes.append(new QWidget);
            boxes.last()->setFixedSize(size);
            flow->addWidget(boxes.last());
        }
        // 40 + 6 + 50 fills the line of 96 exactly; the last is wider than a line can be.
        QCOMPARE(flow->heightForWidth(96), 20 + 6 + 10 + 6 + 10);
        row.resize(96, 60);
        flow->setGeometry(row.rect());
        const QList<QPoint> places{{0, 0}, {46, 0}, {0, 26}, {0, 42}};
        for (qsizetype i = 0; i < boxes.size(); ++i)
            QCOMPARE(boxes.at(i)->pos(), places.at(i));
        QCOMPARE(boxes.last()->width(), 150);
        QCOMPARE(flow->sizeHint(), QSize(40 + 6 + 50 + 6 + 30 + 6 + 150, 20));
    }

private:
    static QString defaultsText(const Scene &scene) {
        return scene.defaults->string("displayTemplate").value_or("none");
    }
};

/// What depends on a window manager and on real keys and clicks.
class TestOnADisplay : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void popoverHangsBelowTheBraceWhileTypingGoesOn() {
        Scene scene("");
        QVERIFY(scene.isReady());
        VirtualKeyboard hands(qEnvironmentVariable("DISPLAY"));
        hands.tap(keyCode(KEY_A));
        hands.chord({keyCode(KEY_LEFTSHIFT), keyCode(KEY_LEFTBRACE)});
        QTRY_VERIFY(scene.field->popover());
        const QRect place = scene.field->popover()->geometry();
        QCOMPARE(place.size(), QSize(260, 16 * 28 + 16));
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
        for (const char *expected : {"a{summary}", "a{"}) {
            hands.chord({keyCode(KEY_LEFTCTRL), keyCode(KEY_Z)});
            QTRY_COMPARE(scene.text(), expected);
        }
        QVERIFY(scene.field->popover()); // the brace is before the caret again
    }

    void popoverStaysOnTheScreen() {
        Scene scene("");
        QVERIFY(scene.isReady());
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        scene.window.move(screen.right() - 100, screen.bottom() - 200);
        QTRY_VERIFY(scene.window.x() > screen.right() - 200);
        scene.keys("{");
        QVERIFY(scene.field->popover());
        QTRY_VERIFY(scene.field->popover()->windowHandle()->isExposed());
        const QRect place = scene.field->popover()->geometry();
        QVERIFY(screen.contains(place));
        QVERIFY(place.bottom() < scene.view->unitRect(0).top());
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
