#include "preferences/EditorScene.h"
#include "preferences/kit/Chip.h"
#include "preferences/kit/SlimScrollBar.h"

#include <QApplication>
#include <QClipboard>
#include <QMimeData>

using namespace Qt::StringLiterals;

using Scene = EditorScene;

class TestPreferencesEditor : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pastedTextComesWithoutItsLooks() {
        Scene scene("");
        auto *data = new QMimeData;
        data->setHtml("<b>{key}</b> <a href='https://h.example'>x</a>");
        data->setText("{key} x");
        QGuiApplication::clipboard()->setMimeData(data);
        scene.view->paste();
        QCOMPARE(scene.text(), "{key} x");
        QTextCursor cursor(scene.view->document());
        cursor.setPosition(2);
        QVERIFY(cursor.charFormat().fontWeight() <= QFont::Normal);
        QVERIFY(!scene.view->toHtml().contains("href"));
    }

    void chipsInsertAtTheCaretAndAreUndone() {
        Scene scene;
        struct Insertion {
            QString before, after;
            int caretAfter;
        };
        for (const auto &[before, after, caretAfter] :
             {Insertion{"ab", "a{type}b", 7}, Insertion{"{b", "{type}b", 6},
              Insertion{u"\U0001F41Bb"_s, u"\U0001F41B{type}b"_s, 8}}) {
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
        scene.drag(10, 30);
        QCOMPARE(scene.field->fieldHeight(), 82);
    }

    void gripStartsFromTheHeightInForce() {
        Scene scene("");
        scene.keys(QString(400, 'm'));
        QTRY_VERIFY(scene.field->fieldHeight() > 100);
        const int grown = scene.field->fieldHeight();
        scene.drag(10, 20);
        QCOMPARE(scene.field->fieldHeight(), grown + 20);
        const auto *bar = scene.view->findChild<SlimScrollBar *>();
        QVERIFY(bar->isHidden());
        scene.drag(-10, -60);
        QCOMPARE(scene.field->fieldHeight(), grown - 40);
        QTRY_VERIFY(bar->isVisible());
        QVERIFY(!scene.view->verticalScrollBar()->isVisible()); // that of the toolkit
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

QTEST_MAIN(TestPreferencesEditor)
#include "test_preferences_editor.moc"
