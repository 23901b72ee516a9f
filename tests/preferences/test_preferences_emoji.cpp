#include "platform/wording.h"
#include "preferences/PreferencesScene.h"
#include "preferences/emoji/EmojiField.h"

#include <QApplication>
#include <QLineEdit>

using namespace Qt::StringLiterals;

using Scene = PreferencesScene;

class TestPreferencesEmoji : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void emojiTableEditsWholeList() {
        Scene scene("Jira");
        const QStringList standard = scene.types();
        scene.click(scene.find<QAbstractButton>("Add type"));
        auto *added = qobject_cast<QLineEdit *>(scene.view->focusWidget());
        QVERIFY(added);
        QTest::keyClicks(added, "Bug");
        QCOMPARE(scene.types(), standard + QStringList("Bug"));
        QCOMPARE(added->text(), "Bug"); // its row was not made anew while typing

        auto *first = scene.all<EmojiField>("Emoji").first();
        first->selectAll();
        QTest::keyClicks(first, "xy");
        QCOMPARE(Settings::shared().typeEmojiMappings().first().emoji, "xy");

        // Two rows are called Bug by now; only the one whose button it is goes.
        auto *lastRemove = scene.all<QAbstractButton>("Remove this mapping").last();
        lastRemove->setFocus(Qt::TabFocusReason);
        QTest::keyClick(lastRemove, Qt::Key_Space);
        QCOMPARE(scene.types(), standard);
        QCOMPARE(nameOf(scene.view->focusWidget()), "Remove this mapping");

        auto *comment = scene.find<EmojiField>("Emoji for comments");
        comment->selectAll();
        QTest::keyClicks(comment, "c");
        scene.click(scene.find<QAbstractButton>("Reset to defaults"));
        QCOMPARE(Settings::shared().typeEmojiMappings(), Settings::defaultTypeEmojiMappings());
        QCOMPARE(scene.all<EmojiField>("Emoji").first()->text(), u"\U0001F41B"_s);
        QCOMPARE(Settings::shared().commentEmoji(), "c");
    }

    void pickedEmojiReplacesOrIsInserted() {
        Scene scene("Jira");
        scene.click(scene.find<QAbstractButton>("Open the emoji picker"));
        QTRY_VERIFY(scene.picker());
        auto *search = scene.picker()->findChild<QLineEdit *>();
        QTRY_VERIFY(search->hasFocus());
        QTest::keyClicks(search, " HIT  direct");
        QTest::keyClick(search, Qt::Key_Return);
        QCOMPARE(Settings::shared().typeEmojiMappings().first().emoji, u"\U0001F3AF"_s);
        QTRY_VERIFY(!scene.picker());
        QVERIFY(scene.find<EmojiField>("Emoji")->hasFocus());

        auto *field = scene.find<EmojiField>("Emoji for comments");
        field->setText("a");
        field->setFocus();
        setWording(linuxWording());
        const auto open = [&] { QTest::keyClick(field, Qt::Key_Period, Qt::ControlModifier); };
        const auto key = [](Qt::Key name) { QTest::keyClick(QApplication::focusWidget(), name); };
        open();
        QTRY_VERIFY(scene.picker());
        QTest::keyClick(scene.picker(), Qt::Key_Escape);
        QTRY_VERIFY(!scene.picker());
        QCOMPARE(Settings::shared().commentEmoji(), "a");
        open();
        QTRY_VERIFY(scene.picker());
        search = scene.picker()->findChild<QLineEdit *>();
        QTest::keyClicks(search, "rocket");
        QTest::keyClick(search, Qt::Key_Down);
        key(Qt::Key_Return);
        QCOMPARE(Settings::shared().commentEmoji(), u"a\U0001F680"_s);
        QTRY_VERIFY(!scene.picker());
        open();
        QTRY_VERIFY(scene.picker());
        QTest::keyClick(scene.picker()->findChild<QLineEdit *>(), Qt::Key_Down);
        QCOMPARE(nameOf(QApplication::focusWidget()), "Recent emoji");
        key(Qt::Key_Return);
        QCOMPARE(Settings::shared().commentEmoji(), u"a\U0001F680\U0001F680"_s);
    }
};

QTEST_MAIN(TestPreferencesEmoji)
#include "test_preferences_emoji.moc"
