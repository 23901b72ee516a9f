#include "model/TemplateCatalog.h"
#include "preferences/PreferencesScene.h"
#include "preferences/hotkey/HotkeyRecording.h"
#include "preferences/kit/Caption.h"
#include "preferences/kit/SegmentedPicker.h"
#include "preferences/kit/Style.h"
#include "preferences/kit/Switch.h"

#include <QApplication>
#include <QLineEdit>
#include <QScrollArea>
#include <QSet>

using namespace Qt::StringLiterals;

using Scene = PreferencesScene;

class TestPreferencesTabs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() {
        QApplication::setFont(m_usualFont);
        QApplication::setPalette(m_usualPalette);
    }

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

    void launchAtLoginShowsWhatTheDesktopSays() {
        using Status = LoginItems::Status;
        for (const auto &[status, isOn] :
             {std::pair{Status::NotRegistered, false}, std::pair{Status::Enabled, true},
              std::pair{Status::RequiresApproval, true}, std::pair{Status::NotFound, false}}) {
            FakePlatform platform;
            platform.loginItems->current = status;
            PreferencesView view;
            const auto *toggle = view.findChild<Switch *>();
            QCOMPARE(toggle->text(), "Launch at login");
            QVERIFY2(toggle->isChecked() == isOn, qPrintable(platform.takeLog().join(' ')));
        }
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

    void tooltipsStandWhereTheyBelong() {
        Scene scene;
        const auto tip = [&](const QString &name, int place = 0) {
            const auto found = scene.all<QWidget>(name);
            return place < found.size() ? found[place]->toolTip() : "nothing called " + name;
        };
        for (const auto &[tab, placeholders] :
             {std::pair{PreferencesTab::Jira, TemplateCatalog::placeholders()},
              std::pair{PreferencesTab::Confluence, TemplateCatalog::confluencePlaceholders()}}) {
            scene.view->selectTab(tab);
            for (const TemplatePlaceholder &placeholder : placeholders)
                QCOMPARE(tip(placeholder.token), "Insert " + placeholder.label);
            QCOMPARE(tip("Reset"), "Restore the default template.");
        }
        scene.view->selectTab(PreferencesTab::Jira);
        QCOMPARE(tip("Remove this mapping"), "Remove this mapping.");
        QCOMPARE(tip("Open the emoji picker"),
                 u"Open the emoji picker. ⌃⌘Space also works when the field is focused."_s);
        QCOMPARE(tip("Reset to defaults"),
                 "Restore the default Bug / Story / Task / Epic / Sub-task mapping.");
        scene.view->selectTab(PreferencesTab::Connection);
        const QString help = u"How to get a scoped %1 API token:\n"
                             "• Go to id.atlassian.com → Security → API tokens\n"
                             "• Click \"Create API token with scopes\" (not the plain button)\n"
                             "• Pick app: %1, then your site\n"
                             "• Scope: %2\n"
                             "• Set a 90-day expiry\n"
                             "• Copy the token, paste it here, click Save Token"_s;
        QCOMPARE(tip("Jira API Token"),
                 help.arg("Jira", "read:jira-work (add read:me to also show your name in Test "
                                  "Connection)"));
        QCOMPARE(tip("Confluence API Token"),
                 help.arg("Confluence", "read:page:confluence") +
                     "\n(Atlassian tokens are single-product, so this is separate from Jira's.)");
        QCOMPARE(tip("Create or manage API tokens at id.atlassian.com"),
                 "Opens the Atlassian API tokens page in your browser.");
    }

    void theAgeOfTheTokenIsToldEachTimeTheTabIsOpened() {
        Scene scene;
        const auto age = [&] {
            for (const Caption *line : scene.view->findChildren<Caption *>()) {
                if (line->isVisible() && line->text().startsWith("Token saved"))
                    return line;
            }
            return static_cast<const Caption *>(nullptr);
        };
        const QDateTime saved = scene.dispatch->wallTime();
        scene.view->selectTab(PreferencesTab::Connection);
        QVERIFY(!age());
        Settings::shared().tokenSavedAt = saved;
        for (const auto &[seconds, text] :
             QList<std::pair<qint64, QString>>{{0, "Token saved today."},
                                               {86400, "Token saved 1 day ago."},
                                               {2 * 86400, "Token saved 2 days ago."},
                                               {80 * 86400 - 1, "Token saved 79 days ago."},
                                               {80 * 86400, u"Token saved 80 days ago. — consider "
                                                            "rotating."_s}}) {
            scene.view->hide();
            scene.dispatch->setWallTime(saved.addSecs(seconds));
            scene.view->show();
            QVERIFY2(age() && age()->text() == text, qPrintable(text));
            using Style::ColourRole;
            const ColourRole role =
                text.contains("rotating") ? ColourRole::Warning : ColourRole::Secondary;
            QVERIFY2(age()->palette().color(QPalette::WindowText) ==
                         Style::colour(role, scene.view->palette()),
                     qPrintable(text));
        }
    }

    void theTabKeyReachesEverythingFromTopToBottom() {
        Scene scene;
        for (const PreferencesTab tab : PreferencesTabs::allCases) {
            scene.view->selectTab(tab);
            scene.dispatch->drain(); // the tokens are there
            if (tab == PreferencesTab::Jira)
                scene.click(scene.find<QAbstractButton>("Add type"));
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
        for (const int size : {14, 18, 22}) {
            QFont font = m_usualFont;
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
    }

    void looksFollowTheDesktopWhileOpen() {
        Scene scene;
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
        QFont large = m_usualFont;
        large.setPixelSize(22); // half as large again as the largest usual size
        QApplication::setFont(large);
        QTRY_COMPARE(caption->font().pixelSize(), 20);
        QVERIFY(heights().width() > usualHeights.width());
        QVERIFY(heights().height() > usualHeights.height());
    }

private:
    const QFont m_usualFont = QApplication::font();
    const QPalette m_usualPalette = QApplication::palette();
};

QTEST_MAIN(TestPreferencesTabs)
#include "test_preferences_tabs.moc"
