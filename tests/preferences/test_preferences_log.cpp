#include "fakes/FakePlatform.h"
#include "preferences/LogView.h"
#include "storage/LogStore.h"

#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextEdit>

using namespace std::chrono_literals;

namespace {

/// A log window, opened.
struct Scene : FakePlatform {
    Scene() {
        takeLog();
        view.resize(640, 420);
        view.show();
    }
    QPushButton *button(int place) const { return view.findChildren<QPushButton *>().at(place); }
    QString count() const { return view.findChildren<QLabel *>().at(1)->text(); }
    QTextEdit *list() const { return view.findChild<QTextEdit *>(); }
    QStringList rows() const {
        return list()->isVisible() ? list()->toPlainText().split('\n') : QStringList();
    }
    bool isAtEnd() const {
        const QScrollBar *bar = list()->verticalScrollBar();
        return bar->maximum() > 0 && bar->value() == bar->maximum();
    }

    LogView view;
};

} // namespace

class TestLog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void emptyLog() {
        Scene scene;
        QCOMPARE(scene.count(), "0 entries (last 200 kept)");
        QVERIFY(!scene.button(0)->isEnabled() && !scene.button(1)->isEnabled());
        QVERIFY(!scene.list()->isVisible());
        log("first");
        QCOMPARE(scene.rows(), QStringList("14:03:09\tfirst"));
        QTest::mouseClick(scene.button(1), Qt::LeftButton);
        QCOMPARE(scene.rows().size(), 1); // the log empties in a turn of its own
        scene.dispatch->drain();
        QVERIFY(!scene.list()->isVisible());
        QVERIFY(!scene.button(1)->isEnabled());
        log("again");
        QCOMPARE(scene.rows(), QStringList("14:03:09\tagain"));
    }

    void followsTheNewest() {
        Scene scene;
        QStringList expected;
        for (int i = 0; i < 250; ++i) {
            log(QString("entry %1").arg(i));
            if (i >= 50)
                expected.append(QString("14:03:09\tentry %1").arg(i));
        }
        QCOMPARE(scene.rows(), expected);
        QCOMPARE(scene.count(), "200 entries (last 200 kept)");
        QTRY_VERIFY(scene.isAtEnd());
        scene.list()->verticalScrollBar()->setValue(0);
        log("one more"); // the oldest goes, the count stays
        QCOMPARE(scene.rows().size(), 200);
        QCOMPARE(scene.rows().first(), "14:03:09\tentry 51");
        QCOMPARE(scene.rows().last(), "14:03:09\tone more");
        QTRY_VERIFY(scene.isAtEnd());
    }

    void sleepsWhileHidden() {
        Scene scene;
        log("first");
        scene.view.hide();
        QSignalSpy changes(scene.list()->document(), &QTextDocument::contentsChanged);
        log("second\nline");
        QCOMPARE(changes.size(), 0);
        scene.view.show();
        QCOMPARE(scene.list()->document()->blockCount(), 2);
        QVERIFY(scene.rows().contains("14:03:09\tsecond"));
        QCOMPARE(scene.count(), "2 entries (last 200 kept)");
        QVERIFY(!scene.list()->textCursor().hasSelection());
    }

    void aSelectionSurvivesNews() {
        Scene scene;
        for (int i = 0; i < 200; ++i)
            log(QString("entry %1").arg(i));
        QTextEdit &list = *scene.list();
        list.moveCursor(QTextCursor::Start);
        QVERIFY(list.find("entry 100"));
        log("news");
        QCOMPARE(list.textCursor().selectedText(), "entry 100");
        QVERIFY(list.find("news")); // to the very end of the text
        log("more news");
        QCOMPARE(list.textCursor().selectedText(), "news");
        scene.view.setPalette(QPalette(Qt::black));
        QCOMPARE(scene.rows().size(), 200); // in the new colours
        QCOMPARE(scene.rows().last(), "14:03:09\tmore news");
    }

    void copiesAll() {
        Scene scene;
        log("first");
        log("second");
        QTest::mouseClick(scene.button(0), Qt::LeftButton);
        QCOMPARE(scene.pasteboard->text(PasteboardType::String), LogStore::shared().formattedAll());
        QCOMPARE(scene.button(0)->text(), "Copied ✓");
        scene.dispatch->advance(1000ms);
        QTest::mouseClick(scene.button(0), Qt::LeftButton);
        scene.dispatch->advance(399ms);
        QCOMPARE(scene.button(0)->text(), "Copied ✓");
        scene.dispatch->advance(1ms); // the first press ends it
        QCOMPARE(scene.button(0)->text(), "Copy All");
    }
};

QTEST_MAIN(TestLog)
#include "test_preferences_log.moc"
