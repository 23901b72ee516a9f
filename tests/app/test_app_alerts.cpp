#include "platform/qt/QtAlerts.h"

#include <QApplication>
#include <QPushButton>
#include <QTest>

namespace {

QList<QMessageBox *> boxes() {
    QList<QMessageBox *> found;
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (auto *box = qobject_cast<QMessageBox *>(window); box && box->isVisible())
            found.append(box);
    }
    return found;
}

/// The box in front; null when it is no box.
QMessageBox *front() {
    return qobject_cast<QMessageBox *>(QApplication::activeWindow());
}

} // namespace

class TestAppAlerts : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() {
        for (QMessageBox *box : boxes())
            box->close();
        QTRY_VERIFY(boxes().isEmpty());
    }

    void looksAsItsStyleSays() {
        QPixmap own(64, 64);
        own.fill(Qt::magenta);
        QApplication::setWindowIcon(own);
        QtAlerts alerts;
        alerts.show({Alert::Style::Warning, "w", "more", {"First", "Second"}}, [](int) {});
        QCOMPARE(boxes().size(), 1);
        QMessageBox *warning = boxes()[0];
        QCOMPARE(warning->icon(), QMessageBox::Warning);
        QCOMPARE(warning->windowTitle(), "Brindle");
        QCOMPARE(warning->informativeText(), "more");
        QCOMPARE(warning->defaultButton()->text(), "First");
        warning->close();

        alerts.show({Alert::Style::Informational, "i", {}, {"OK"}}, [](int) {});
        QTRY_COMPARE(boxes().size(), 1);
        QCOMPARE(boxes()[0]->icon(), QMessageBox::NoIcon);
        QCOMPARE(boxes()[0]->iconPixmap().toImage().pixelColor(5, 5), QColor(Qt::magenta));
    }

    void tellsWhichButton() {
        QtAlerts alerts;
        QList<int> chosen;
        const Alert alert{Alert::Style::Warning, "w", {}, {"First", "Second"}};
        for (const int button : {0, 1}) {
            alerts.show(alert, [&](int index) { chosen.append(index); });
            boxes()[0]->buttons()[button]->click();
            QTRY_VERIFY(boxes().isEmpty());
        }
        alerts.show(alert, [&](int index) { chosen.append(index); });
        QTest::keyClick(boxes()[0], Qt::Key_Escape);
        QCOMPARE(chosen, QList<int>({0, 1, 1}));
    }

    void oneBoxOfAKind() {
        QtAlerts alerts;
        QList<int> told;
        alerts.show({Alert::Style::Informational, "About", "old", {"OK"}},
                    [&](int) { told.append(1); });
        alerts.show({Alert::Style::Informational, "Updates", "x", {"OK"}}, [](int) {});
        QTRY_VERIFY(front() && front()->text() == "Updates");
        alerts.show({Alert::Style::Informational, "About", "new", {"OK"}},
                    [&](int) { told.append(2); });
        QCOMPARE(boxes().size(), 2);
        QTRY_VERIFY(front() && front()->text() == "About");
        QCOMPARE(front()->informativeText(), "new");
        front()->buttons()[0]->click();
        QCOMPARE(told, QList<int>{1});
        // Once closed, it comes anew, even before the old one is gone.
        alerts.show({Alert::Style::Informational, "About", "again", {"OK"}},
                    [&](int) { told.append(3); });
        QTRY_VERIFY(front() && front()->text() == "About");
        front()->buttons()[0]->click();
        QCOMPARE(told, QList<int>({1, 3}));
    }
};

QTEST_MAIN(TestAppAlerts)
#include "test_app_alerts.moc"
