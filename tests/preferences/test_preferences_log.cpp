#include "fakes/FakePlatform.h"
#include "preferences/log/LogView.h"
#include "storage/LogStore.h"

#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTextEdit>

using namespace Qt::StringLiterals;

namespace {

/// A log window, opened.
struct Scene : FakePlatform {
    Scene() {
        takeLog();
        view.resize(640, 420);
        view.show();
    }
    QPushButton *button(int place) const { return view.findChildren<QPushButton *>().at(place); }
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
    void copiesClearsAndCatchesUp() {
        Scene scene;
        QPushButton *copy = scene.button(0);
        QPushButton *clear = scene.button(1);
        QVERIFY(!copy->isEnabled() && !clear->isEnabled() && !scene.list()->isVisible());
        log("first");
        log("second");
        QTest::mouseClick(copy, Qt::LeftButton);
        QCOMPARE(scene.pasteboard->text(PasteboardType::String), LogStore::shared().formattedAll());
        QVERIFY(copy->text().startsWith("Copied"));
        scene.dispatch->advance(std::chrono::seconds(2));
        QCOMPARE(copy->text(), "Copy All");
        QTest::mouseClick(clear, Qt::LeftButton);
        scene.dispatch->drain();
        QVERIFY(!copy->isEnabled() && !clear->isEnabled() && !scene.list()->isVisible());
        log("again");
        scene.view.hide();
        LogStore::shared().write(u"un\nseen\r\u2029\u2028\u0085\uFDD0\uFDD1\uFFFEline"_s);
        log("last");
        scene.view.show();
        QCOMPARE(scene.rows(),
                 QStringList({"14:03:09\tagain", u"14:03:09\tun seen    \uFFFD\uFFFD\uFFFDline"_s,
                              "14:03:09\tlast"}));
        QVERIFY(!scene.list()->textCursor().hasSelection());
    }

    void followsTheNewestAndKeepsTheSelection() {
        Scene scene;
        QStringList expected;
        for (int i = 0; i < 250; ++i) {
            log(QString("entry %1").arg(i));
            if (i >= 50)
                expected.append(QString("14:03:09\tentry %1").arg(i));
        }
        QCOMPARE(scene.rows(), expected);
        QTRY_VERIFY(scene.isAtEnd());
        QTextEdit &list = *scene.list();
        list.moveCursor(QTextCursor::Start);
        QVERIFY(list.find("entry 100"));
        list.verticalScrollBar()->setValue(0);
        log("news"); // the oldest goes, the count stays
        QCOMPARE(scene.rows(), expected.mid(1) + QStringList("14:03:09\tnews"));
        QTRY_VERIFY(scene.isAtEnd());
        QCOMPARE(list.textCursor().selectedText(), "entry 100");
        QVERIFY(list.find("news")); // to the very end of the text
        log("more news");
        QCOMPARE(list.textCursor().selectedText(), "news");
        scene.view.setPalette(QPalette(Qt::black));
        QCOMPARE(scene.rows().mid(198), QStringList({"14:03:09\tnews", "14:03:09\tmore news"}));
    }
};

QTEST_MAIN(TestLog)
#include "test_preferences_log.moc"
