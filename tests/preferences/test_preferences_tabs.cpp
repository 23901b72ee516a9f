#include "fakes/FakePlatform.h"
#include "preferences/PreferencesView.h"
#include "preferences/emoji/EmojiPicker.h"
#include "preferences/emoji/EmojiPickerField.h"
#include "preferences/hotkey/HotkeyRecording.h"
#include "preferences/kit/Caption.h"
#include "preferences/kit/SegmentedPicker.h"
#include "preferences/kit/Style.h"
#include "preferences/kit/Switch.h"
#include "preferences/kit/WrappingText.h"
#include "storage/Settings.h"

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QScrollArea>
#include <QSet>
#include <QTest>

namespace {

QString nameOf(QWidget *widget) {
    QAccessibleInterface *face = QAccessible::queryAccessibleInterface(widget);
    return face ? face->text(QAccessible::Name) : QString();
}

struct Scene : FakePlatform {
    explicit Scene(const QString &tab = {}) {
        view = std::make_unique<PreferencesView>();
        view->show();
        QVERIFY(QTest::qWaitForWindowActive(view.get()));
        if (!tab.isEmpty())
            click(find<QAbstractButton>(tab));
    }

    /// The widgets of that kind on the screen that are called `name` by assistive programs.
    template <class W>
    QList<W *> all(const QString &name) const {
        QList<W *> found;
        for (W *widget : view->findChildren<W *>()) {
            if (widget->isVisible() && nameOf(widget) == name)
                found.append(widget);
        }
        QCoreApplication::processEvents(); // lay out what is new
        return found;
    }
    template <class W>
    W *find(const QString &name) const {
        return all<W>(name).value(0);
    }
    void click(QWidget *widget) {
        QVERIFY(widget);
        QTest::mouseClick(widget, Qt::LeftButton);
    }
    qsizetype count(const QString &text) const {
        qsizetype found = 0;
        for (const QLabel *label : view->findChildren<QLabel *>())
            found += label->isVisible() && label->text() == text;
        for (const WrappingText *one : view->findChildren<WrappingText *>())
            found += one->isVisible() && one->toPlainText() == text;
        return found;
    }
    EmojiPicker *picker() const { return view->findChild<EmojiPicker *>(); }
    static QStringList types() {
        QStringList types;
        for (const TypeEmojiMapping &mapping : Settings::shared().typeEmojiMappings())
            types.append(mapping.type);
        return types;
    }

    std::unique_ptr<PreferencesView> view;
};

} // namespace

class TestPreferencesTabs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sidebarSelectsByClickAndByKey() {
        Scene scene;
        auto *general = scene.find<QAbstractButton>("General");
        // Return is the default button's unless a ring shows.
        general->setFocus(Qt::MouseFocusReason);
        QTest::keyClick(general, Qt::Key_Return);
        QVERIFY(HotkeyRecording::shared().current());
        HotkeyRecording::shared().toggle(RecordedHotkey::Primary);
        general->clearFocus();
        general->setFocus(Qt::TabFocusReason);
        QTest::keyClick(general, Qt::Key_Return);
        QVERIFY(!HotkeyRecording::shared().current());
        scene.click(scene.find<QAbstractButton>("ID Links"));
        QVERIFY(scene.find<QLineEdit>("Base URL"));
        QTest::keyClick(scene.find<QAbstractButton>("ID Links"), Qt::Key_Up);
        QCOMPARE(scene.view->selectedTab(), PreferencesTab::Confluence);
    }

    void refusedLaunchAtLoginSpringsBack() {
        Scene scene;
        scene.loginItems->error = "no";
        auto *toggle = scene.find<Switch>("Launch at login");
        scene.click(toggle);
        QVERIFY(toggle->isChecked());
        scene.dispatch->advance(std::chrono::milliseconds(300));
        QVERIFY(!toggle->isChecked());

        scene.click(toggle);
        scene.view.reset();
        scene.dispatch->advance(std::chrono::seconds(1)); // nobody is left to spring back
    }

    void formatsAreStoredAndShownByExample() {
        Scene scene;
        scene.click(scene.find<QAbstractButton>("Markdown"));
        QTest::keyClick(scene.find<QAbstractButton>("Markdown"), Qt::Key_Right);
        QCOMPARE(Settings::shared().pasteFormat(), PasteFormat::PlainText);
        Settings::shared().pasteFormat = PasteFormat::RichLink; // changed elsewhere
        QCOMPARE(scene.find<SegmentedPicker>("Paste format")->current(), 0);
        Settings::shared().displayTemplate = "<b>{key}</b>";
        QCOMPARE(scene.count("AB-12"), 1);

        scene.click(scene.find<QAbstractButton>("ID Links"));
        const QString id = "0123456789abcdef01234567";
        const QString off = "Set a base URL above to enable ID links.";
        QCOMPARE(scene.count(off), 2);
        QTest::keyClicks(scene.find<QLineEdit>("Base URL"), "https://h.example/r");
        QCOMPARE(scene.count("https://h.example/r/" + id), 2);
        scene.click(scene.find<QAbstractButton>("Markdown"));
        QCOMPARE(Settings::shared().pasteFormat(), PasteFormat::RichLink);
        QCOMPARE(scene.count("[" + id + "](https://h.example/r/" + id + ")"), 1);
        scene.find<QLineEdit>("Base URL")->clear();
        QCOMPARE(scene.count(off), 2);
    }

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
        QCOMPARE(scene.all<EmojiField>("Emoji").first()->text(), u"\U0001F41B"_qs);
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
        QCOMPARE(Settings::shared().typeEmojiMappings().first().emoji, u"\U0001F3AF"_qs);
        QTRY_VERIFY(!scene.picker());
        QVERIFY(scene.find<EmojiField>("Emoji")->hasFocus());

        auto *field = scene.find<EmojiField>("Emoji for comments");
        field->setText("a");
        field->setFocus();
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
        QCOMPARE(Settings::shared().commentEmoji(), u"a\U0001F680"_qs);
        QTRY_VERIFY(!scene.picker());
        open();
        QTRY_VERIFY(scene.picker());
        QTest::keyClick(scene.picker()->findChild<QLineEdit *>(), Qt::Key_Down);
        QCOMPARE(nameOf(QApplication::focusWidget()), "Recent emoji");
        key(Qt::Key_Return);
        QCOMPARE(Settings::shared().commentEmoji(), u"a\U0001F680\U0001F680"_qs);
    }

    void theTabKeyReachesEverythingFromTopToBottom() {
        Scene scene;
        for (const PreferencesTab tab : PreferencesTabs::allCases) {
            scene.view->selectTab(tab);
            scene.dispatch->drain(); // the tokens are there
            QAbstractButton *start = scene.find<QAbstractButton>(PreferencesTabs::face(tab).title);
            start->setFocus(Qt::TabFocusReason);
            QSet<QWidget *> wanted;
            for (QWidget *widget : scene.view->findChildren<QWidget *>()) {
                if (widget->isVisible() && widget->isEnabled() && !widget->focusProxy() &&
                    widget->focusPolicy() & Qt::TabFocus && !widget->inherits("SidebarRow"))
                    wanted.insert(widget);
            }
            QVERIFY(wanted.size() >= 4);
            for (QWidget *last = start;;) {
                QTest::keyClick(last, Qt::Key_Tab);
                QWidget *next = scene.view->focusWidget();
                if (next == start)
                    break;
                QVERIFY2(wanted.remove(next), qPrintable(nameOf(next)));
                const int way = next->mapToGlobal(QPoint()).y() - last->mapToGlobal(QPoint()).y();
                QVERIFY2(last == start || way + next->height() > 0, qPrintable(nameOf(next)));
                last = next;
            }
            QVERIFY2(wanted.isEmpty(), qPrintable(nameOf(wanted.values().value(0))));
        }
    }

    void everyTabFitsASmallScreen() {
        const QFont usual = QApplication::font();
        for (const int size : {14, 18, 22}) {
            QFont font = usual;
            font.setPixelSize(size);
            QApplication::setFont(font);
            Scene scene;
            scene.view->setFixedSize(800, 400);
            for (const PreferencesTab tab : PreferencesTabs::allCases) {
                scene.view->selectTab(tab);
                QCoreApplication::processEvents();
                for (const auto *page : scene.view->findChildren<QScrollArea *>()) {
                    const QWidget *content = page->widget();
                    QVERIFY2(!page->isVisible() || content->width() == page->width(),
                             qPrintable(QString("%1 with text of %2: %3 in %4")
                                            .arg(PreferencesTabs::face(tab).title)
                                            .arg(size)
                                            .arg(content->width())
                                            .arg(page->width())));
                }
            }
        }
        QApplication::setFont(usual);
    }

    void textsAreMeasuredAnewWhenTheyChange() {
        Caption caption("short");
        WrappingText text("Text");
        text.setPlainText("short");
        const int captionHeight = caption.heightForWidth(100);
        const int textHeight = text.heightForWidth(100);
        caption.setText(QString("long ").repeated(20));
        text.setPlainText(caption.text());
        QVERIFY(caption.heightForWidth(100) > 2 * captionHeight);
        QVERIFY(text.heightForWidth(100) > 2 * textHeight);
    }

    void looksFollowTheDesktopWhileOpen() {
        Scene scene;
        const QPalette usualPalette = QApplication::palette();
        const QFont usualFont = QApplication::font();
        auto *caption = scene.view->findChild<Caption *>();
        const auto *example = scene.view->findChild<WrappingText *>();
        const auto heights = [&] {
            return QSize(caption->heightForWidth(300), example->heightForWidth(300));
        };
        const QSize usualHeights = heights();
        QPalette dark(QColor(40, 40, 40));
        QApplication::setPalette(dark);
        QTRY_COMPARE(caption->palette().color(QPalette::WindowText),
                     Style::colour(Style::ColourRole::Secondary, dark));
        QFont large = usualFont;
        large.setPixelSize(22); // half as large again as the largest usual size
        QApplication::setFont(large);
        QTRY_COMPARE(caption->font().pixelSize(), 20);
        QVERIFY(heights().width() > usualHeights.width());
        QVERIFY(heights().height() > usualHeights.height());
        QApplication::setFont(usualFont);
        QApplication::setPalette(usualPalette);
    }
};

QTEST_MAIN(TestPreferencesTabs)
#include "test_preferences_tabs.moc"
