#include "fakes/FakePlatform.h"
#include "platform/wording.h"
#include "preferences/EmojiPicker.h"
#include "preferences/EmojiPickerField.h"
#include "preferences/HotkeyRecording.h"
#include "preferences/PreferencesView.h"
#include "preferences/kit/Caption.h"
#include "preferences/kit/SegmentedPicker.h"
#include "preferences/kit/Style.h"
#include "preferences/kit/Switch.h"
#include "preferences/kit/WrappingText.h"
#include "storage/Settings.h"

#include <QAccessible>
#include <QApplication>
#include <QLabel>
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
        if (!tab.isEmpty())
            click(find<QAbstractButton>(tab));
    }

    /// The widgets of that kind on the screen that are called `name` by assistive programs, from
    /// top to bottom.
    template <class W>
    QList<W *> all(const QString &name) const {
        QList<W *> found;
        for (W *widget : view->findChildren<W *>()) {
            if (widget->isVisible() && nameOf(widget) == name)
                found.append(widget);
        }
        QCoreApplication::processEvents(); // lay out what is new
        std::stable_sort(found.begin(), found.end(), [](const W *a, const W *b) {
            return a->mapToGlobal(QPoint()).y() < b->mapToGlobal(QPoint()).y();
        });
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
    bool says(const QString &text) const { return count(text) > 0; }
    qsizetype count(const QString &text) const {
        qsizetype found = 0;
        for (const QLabel *label : view->findChildren<QLabel *>())
            found += label->isVisible() && label->text() == text;
        for (const WrappingText *one : view->findChildren<WrappingText *>())
            found += one->isVisible() && one->toPlainText() == text;
        return found;
    }
    static QStringList types() {
        QStringList types;
        for (const TypeEmojiMapping &mapping : Settings::shared().typeEmojiMappings())
            types.append(mapping.type);
        return types;
    }

    std::unique_ptr<PreferencesView> view;
};

QString captions(const Scene &scene) {
    QString all;
    for (const auto *caption : scene.view->findChildren<Caption *>())
        all += caption->text() + '\n';
    return all;
}

EmojiPicker *openPicker(const Scene &scene) {
    return scene.view->findChild<EmojiPicker *>();
}

} // namespace

class TestPreferencesTabs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sidebarSelectsByClickAndByKey() {
        Scene scene;
        QVERIFY(QTest::qWaitForWindowActive(scene.view.get()));
        QCOMPARE(scene.view->size(), QSize(720, 520));
        QCOMPARE(scene.view->selectedTab(), PreferencesTab::General);
        auto *general = scene.find<QAbstractButton>("General");
        for (const auto &[reason, records] :
             {std::pair(Qt::MouseFocusReason, true), std::pair(Qt::TabFocusReason, false)}) {
            general->clearFocus();
            general->setFocus(reason);
            QTest::keyClick(general, Qt::Key_Return); // the default button's unless a ring shows
            QCOMPARE(HotkeyRecording::shared().current().has_value(), records);
            if (records)
                HotkeyRecording::shared().toggle(RecordedHotkey::Primary);
        }
        scene.click(scene.find<QAbstractButton>("ID Links"));
        QCOMPARE(scene.view->selectedTab(), PreferencesTab::Account);
        QVERIFY(scene.says("Base URL"));
        QTest::keyClick(scene.find<QAbstractButton>("ID Links"), Qt::Key_Up);
        QCOMPARE(scene.view->selectedTab(), PreferencesTab::Confluence);
        QVERIFY(!scene.says("Base URL"));
    }

    void hoverTintsOneRowAtATime() {
        Scene scene;
        QVERIFY(QTest::qWaitForWindowExposed(scene.view.get()));
        auto *jira = scene.find<QAbstractButton>("Jira");
        auto *confluence = scene.find<QAbstractButton>("Confluence");
        const QPoint corner(100, 4);
        const auto colour = [&](QWidget *row) { return row->grab().toImage().pixelColor(corner); };
        const QColor clear = colour(jira);
        QTest::mouseMove(jira, corner);
        QTRY_VERIFY(colour(jira) != clear);
        QTest::mouseMove(confluence, corner);
        QTRY_VERIFY(colour(confluence) != clear);
        QCOMPARE(colour(jira), clear);
    }

    void refusedLaunchAtLoginSpringsBack() {
        Scene scene;
        scene.loginItems->error = "no";
        auto *toggle = scene.find<Switch>("Launch at login");
        scene.click(toggle);
        QVERIFY(toggle->isChecked());
        scene.dispatch->advance(std::chrono::milliseconds(299));
        QVERIFY(toggle->isChecked());
        scene.dispatch->advance(std::chrono::milliseconds(1));
        QVERIFY(!toggle->isChecked());
        QCOMPARE(scene.notifications->shown.size(), 1);

        scene.loginItems->error.clear();
        QTest::keyClick(toggle, Qt::Key_Space);
        QCOMPARE(scene.loginItems->current, LoginItems::Status::Enabled);
        scene.dispatch->advance(std::chrono::milliseconds(300));
        QVERIFY(toggle->isChecked());
        scene.view.reset();
        scene.dispatch->advance(std::chrono::seconds(1)); // nobody is left to spring back
    }

    void pasteFormatIsStoredAndShownByExample() {
        Scene scene;
        QVERIFY(QTest::qWaitForWindowActive(scene.view.get()));
        auto *picker = scene.find<SegmentedPicker>("Paste format");
        QStringList titles;
        for (const auto *segment : picker->findChildren<QAbstractButton *>())
            titles.append(segment->text());
        QCOMPARE(titles, QStringList({"Rich Link", "Markdown", "Plain Text"}));
        QCOMPARE(picker->current(), 0);
        QVERIFY(scene.says("AB-12 - BUG - Fix login crash"));
        scene.click(scene.find<QAbstractButton>("Markdown"));
        QCOMPARE(Settings::shared().pasteFormat(), PasteFormat::Markdown);
        QVERIFY(scene.says("[AB-12 - BUG - Fix login "
                           "crash](https://your-team.atlassian.net/browse/AB-12)"));
        QTest::keyClick(scene.find<QAbstractButton>("Markdown"), Qt::Key_Right);
        QCOMPARE(Settings::shared().pasteFormat(), PasteFormat::PlainText);
        Settings::shared().pasteFormat = PasteFormat::RichLink; // changed elsewhere
        QCOMPARE(picker->current(), 0);
        Settings::shared().displayTemplate = "<b>{key}</b>";
        QVERIFY(scene.says("AB-12"));
        scene.click(scene.find<Switch>("Restore original clipboard after paste"));
        QVERIFY(!Settings::shared().restoreClipboardAfterPaste());
    }

    void wordsAreThoseOfTheDesktop() {
        Scene scene;
        const QString mac = captions(scene);
        QVERIFY(mac.contains("on your Mac uses") && mac.contains(u"a plain \u2318V later"_qs));
        setWording(linuxWording());
        scene.view = std::make_unique<PreferencesView>();
        QVERIFY(captions(scene).contains("on your computer uses"));
        QVERIFY(captions(scene).contains("a plain Ctrl+V later"));
    }

    void emojiTableEditsWholeList() {
        Scene scene("Jira");
        const QStringList standard = scene.types();
        scene.click(scene.find<QAbstractButton>("Add type"));
        QCOMPARE(scene.types(), standard + QStringList(""));
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

        scene.click(scene.all<QAbstractButton>("Remove this mapping").at(1));
        QCOMPARE(scene.types(), QStringList({"Bug", "Task", "Epic", "Sub-task"}));
        auto *comment = scene.find<EmojiField>("Emoji for comments");
        comment->selectAll();
        QTest::keyClicks(comment, "c");
        scene.click(scene.find<QAbstractButton>("Reset to defaults"));
        QCOMPARE(Settings::shared().typeEmojiMappings(), Settings::defaultTypeEmojiMappings());
        QCOMPARE(scene.all<EmojiField>("Emoji").first()->text(), u"\U0001F41B"_qs);
        QCOMPARE(Settings::shared().commentEmoji(), "c");
    }

    void pickerButtonReplacesTheEmoji() {
        Scene scene("Jira");
        QVERIFY(QTest::qWaitForWindowActive(scene.view.get()));
        auto *button = scene.all<QAbstractButton>("Open the emoji picker").first();
        QCOMPARE(button->toolTip(), u"Open the emoji picker. \u2303\u2318Space also works when the "
                                    "field is focused."_qs);
        scene.click(button);
        QTRY_VERIFY(openPicker(scene));
        auto *search = openPicker(scene)->findChild<QLineEdit *>();
        QTRY_VERIFY(search->hasFocus());
        QTest::keyClicks(search, "direct hit");
        QTest::keyClick(search, Qt::Key_Return);
        QCOMPARE(Settings::shared().typeEmojiMappings().first().emoji, u"\U0001F3AF"_qs);
        QTRY_VERIFY(!openPicker(scene));
        QVERIFY(scene.all<EmojiField>("Emoji").first()->hasFocus());
    }

    void pickerKeysInsertAtTheCaretAndRecentComesFirst() {
        Scene scene("Jira");
        QVERIFY(QTest::qWaitForWindowActive(scene.view.get()));
        auto *field = scene.find<EmojiField>("Emoji for comments");
        field->setText("a");
        field->setFocus();
        const auto open = [&] { QTest::keyClick(field, Qt::Key_Period, Qt::ControlModifier); };
        open();
        QTRY_VERIFY(openPicker(scene));
        QTest::keyClick(openPicker(scene), Qt::Key_Escape);
        QTRY_VERIFY(!openPicker(scene));
        QCOMPARE(Settings::shared().commentEmoji(), "a");
        open();
        QTRY_VERIFY(openPicker(scene));
        QTest::keyClicks(openPicker(scene)->findChild<QLineEdit *>(), "rocket");
        QTest::keyClick(openPicker(scene)->findChild<QLineEdit *>(), Qt::Key_Down);
        QWidget *grid = QApplication::focusWidget();
        QTest::keyClick(grid, Qt::Key_Return);
        QCOMPARE(Settings::shared().commentEmoji(), u"a\U0001F680"_qs);
        QTRY_VERIFY(!openPicker(scene));
        open();
        QTRY_VERIFY(openPicker(scene));
        QTest::keyClick(openPicker(scene)->findChild<QLineEdit *>(), Qt::Key_Down);
        QCOMPARE(nameOf(QApplication::focusWidget()), "Recent emoji");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
        QCOMPARE(nameOf(QApplication::focusWidget()), "Emoji");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Up);
        QCOMPARE(nameOf(QApplication::focusWidget()), "Recent emoji");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCOMPARE(Settings::shared().commentEmoji(), u"a\U0001F680\U0001F680"_qs);
    }

    void catalogueHoldsTheEmojiAndFindsThem() {
        QSet<QString> seen;
        for (const Emoji &emoji : EmojiCatalogue::all()) {
            QVERIFY2(!seen.contains(emoji.text), qPrintable(emoji.name));
            seen.insert(emoji.text);
            QVERIFY(!emoji.name.isEmpty() && !emoji.name.startsWith('<'));
        }
        QVERIFY(seen.size() > 1500);
        QVERIFY(!seen.contains("1") && !seen.contains(u"\U0001F3FB"_qs));
        QVERIFY(seen.contains(u"\u2764\uFE0F"_qs)); // text by default, so with its selector
        const QList<std::pair<QString, QString>> firsts{
            {"bug", u"\U0001F41B"_qs},         {"  OPEN   boo ", u"\U0001F4D6"_qs},
            {"speech ball", u"\U0001F4AC"_qs}, {"germany", u"\U0001F1E9\U0001F1EA"_qs},
            {u"\u2705"_qs, u"\u2705"_qs},      {"oneybe", u"\U0001F41D"_qs},
            {"hit direct", u"\U0001F3AF"_qs},  {"cat", u"\U0001F408"_qs},
        };
        for (const auto &[query, expected] : firsts)
            QCOMPARE(EmojiCatalogue::matching(query).value(0).text, expected);
        QVERIFY(EmojiCatalogue::matching("zzzz").isEmpty());
        QVERIFY(EmojiCatalogue::matching(" - ").isEmpty());
    }

    void idLinksShowTheSample() {
        Scene scene("ID Links");
        const QString id = "0123456789abcdef01234567";
        const QString off = "Set a base URL above to enable ID links.";
        QCOMPARE(scene.count(off), 2);
        QTest::keyClicks(scene.find<QLineEdit>("Base URL"), "https://h.example/r");
        QCOMPARE(Settings::shared().accountBaseURL(), "https://h.example/r");
        QCOMPARE(scene.count("https://h.example/r/" + id), 2);
        scene.click(scene.find<QAbstractButton>("Rich Link"));
        QCOMPARE(Settings::shared().accountPasteFormat(), PasteFormat::RichLink);
        QVERIFY(scene.says(id));
        scene.click(scene.find<QAbstractButton>("Markdown"));
        QVERIFY(scene.says("[" + id + "](https://h.example/r/" + id + ")"));
        QCOMPARE(Settings::shared().pasteFormat(), PasteFormat::RichLink); // the General one stays
        scene.find<QLineEdit>("Base URL")->clear();
        QCOMPARE(scene.count(off), 2);
    }

    void theTabKeyReachesEverythingFromTopToBottom() {
        Scene scene;
        QVERIFY(QTest::qWaitForWindowActive(scene.view.get()));
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
            for (QWidget *last = nullptr;;) {
                QTest::keyClick(scene.view->focusWidget(), Qt::Key_Tab);
                QWidget *next = scene.view->focusWidget();
                if (next == start)
                    break;
                QVERIFY2(wanted.remove(next), qPrintable(nameOf(next)));
                const auto top = [&](const QWidget *one, int y) {
                    return one->mapTo(scene.view.get(), QPoint(0, y)).y();
                };
                if (last)
                    QVERIFY2(top(next, next->height()) > top(last, 0), qPrintable(nameOf(next)));
                last = next;
            }
            QVERIFY2(wanted.isEmpty(), qPrintable(nameOf(wanted.values().value(0))));
        }
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
        QTRY_COMPARE(caption->font().pixelSize(), 13);
        QFont large = usualFont;
        large.setPixelSize(22); // half as large again as the largest usual size
        QApplication::setFont(large);
        QTRY_COMPARE(caption->font().pixelSize(), 20);
        QVERIFY(heights().width() > usualHeights.width());
        QVERIFY(heights().height() > usualHeights.height());
        QCOMPARE(Style::scaled(100), 150);
        const QSize screen = scene.view->screen()->availableSize();
        QTRY_COMPARE(scene.view->size(), QSize(1080, 780).boundedTo(screen));
        QApplication::setPalette(usualPalette);
        QApplication::setFont(usualFont);
        QTRY_COMPARE(scene.view->size(), QSize(720, 520));
        QTRY_COMPARE(caption->font().pixelSize(), 13);
    }
};

QTEST_MAIN(TestPreferencesTabs)
#include "test_preferences_tabs.moc"
