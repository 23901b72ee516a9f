#include "app/AppWindow.h"
#include "app/Application.h"
#include "fakes/FakePlatform.h"
#include "platform/wording.h"
#include "storage/Settings.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QTest>
#include <QTextEdit>
#include <QVBoxLayout>

namespace {

QAction *entry(const QWidget *menu, const QString &title) {
    for (QAction *action : menu->actions()) {
        if (action->text() == title)
            return action;
    }
    return nullptr;
}

QAction *shownEntry(const QWidget *menu, qsizetype index) {
    QList<QAction *> shown = menu->actions();
    shown.removeIf([](const QAction *action) { return !action->isVisible(); });
    return shown.value(index);
}

QMenu *statusMenu() {
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (entry(window, "Enrich Clipboard Only"))
            return qobject_cast<QMenu *>(window);
    }
    return nullptr;
}

/// One of each kind of text in a window.
struct Fields {
    Fields() {
        auto *view = new QWidget;
        auto *column = new QVBoxLayout(view);
        for (QWidget *field : std::initializer_list<QWidget *>{line, password, text, log, label})
            column->addWidget(field);
        password->setEchoMode(QLineEdit::Password);
        password->setText("secret");
        log->setReadOnly(true);
        log->setPlainText("line 1");
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        window = std::make_unique<AppWindow>("Fields", view,
                                             AppWindow::MenuActions{[] {}, [] {}, [] {}});
        window->present();
    }

    QMenu *menu() const { return window->menuBar()->actions()[1]->menu(); }

    /// The titles that are enabled while the menu is open.
    QStringList enabled() const {
        menu()->popup(QPoint(0, 0));
        QStringList titles;
        for (const QAction *action : menu()->actions()) {
            if (action->isEnabled() && !action->isSeparator())
                titles.append(action->text());
        }
        menu()->close();
        return titles;
    }

    QLineEdit *line = new QLineEdit;
    QLineEdit *password = new QLineEdit;
    QTextEdit *text = new QTextEdit;
    QTextEdit *log = new QTextEdit;
    QLabel *label = new QLabel("<b>Network</b> error");
    std::unique_ptr<AppWindow> window;
};

} // namespace

class TestAppMenus : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void statusMenuAndAboutShowTheHotkeyInForce() {
        FakePlatform platform;
        setWording(linuxWording());
        Settings::shared().email = "ann@h.example";
        Application application;
        application.finishLaunching();
        QMenu *menu = statusMenu();
        QVERIFY(menu);
        QCOMPARE(shownEntry(menu, 0)->text(), "Enrich && Paste (Ctrl+Alt+Super+V)");
        const QString greeting = "Turn copied Jira URLs into rich hyperlinks.\n\nHotkey: ";
        for (const auto &[keyCode, modifiers, hotkey] :
             QList<std::tuple<quint32, quint32, QString>>{{38, 2304, "Alt+Super+J"},
                                                          {116, 512, "Shift+Page Up"}}) {
            Settings::shared().hotkeyKeyCode = keyCode;
            Settings::shared().hotkeyModifiers = modifiers;
            application.reinstallHotkey();
            QCOMPARE(shownEntry(menu, 0)->text(), "Enrich && Paste (" + hotkey + ")");
            entry(menu, "About Brindle")->trigger();
            QTRY_VERIFY(!platform.alerts->shown.isEmpty());
            const Alert about = platform.alerts->shown.takeLast();
            QCOMPARE(about.message, "Brindle for Jira");
            QCOMPARE(about.informativeText, greeting + hotkey);
            QCOMPARE(about.buttons, QStringList("OK"));
            QCOMPARE(about.style, Alert::Style::Informational);
        }
    }

    void whatIsMissingIsSaidInTheMenuAndOnce() {
        FakePlatform platform;
        Settings::shared().email = "ann@h.example";
        platform.pasteKeys->granted = {PasteAccess::State::NeedsConsent, "not asked"};
        for (const char *start : {"first", "second"}) {
            Application application;
            application.finishLaunching();
            QVERIFY(shownEntry(statusMenu(), 0)->text() ==
                    "Pasting needs your permission on this desktop.");
            platform.takeLog();
            platform.notifications->shown.clear();
            platform.dispatch->advance(std::chrono::seconds(10));
            const bool isFirst = QByteArray(start) == "first";
            QCOMPARE(platform.takeLog().contains("app: nothing shows status icons here"), isFirst);
            QCOMPARE(platform.notifications->shown.contains(
                         "Brindle|Brindle is reached by its hotkey, the actions of its desktop "
                         "entry and \"brindle preferences\"."),
                     isFirst);
        }
        QCOMPARE(platform.defaults->boolean("toldWithoutTray"), true);
        platform.pasteKeys->granted = {};
        Application application;
        application.finishLaunching();
        QCOMPARE(shownEntry(statusMenu(), 0)->text(), "Enrich && Paste (⌃⌥⌘V)");
    }

    void aHotkeyThatIsNotOursIsShownAsTheDesktopTells() {
        FakePlatform platform;
        Settings::shared().email = "ann@h.example";
        Application application;
        application.finishLaunching();
        using Choice = Hotkeys::DesktopsChoice;
        const QString greeting = "Turn copied Jira URLs into rich hyperlinks.";
        struct Case {
            const char *name;
            std::optional<Choice> choice;
            QString unavailable;
            QString hotkey;
        };
        for (const auto &[name, choice, unavailable, hotkey] :
             {Case{"the desktop's", Choice{"Ctrl+Alt+V", {}}, {}, "Ctrl+Alt+V"},
              Case{"in a file of the user's", Choice{"Put this there:", {}, "x"}, "no way", {}},
              Case{"none", std::nullopt, "no way", {}}}) {
            platform.hotkeys->choice = choice;
            platform.hotkeys->unavailable = unavailable;
            application.reinstallHotkey();
            const QString title = shownEntry(statusMenu(), 0)->text();
            QVERIFY2(title == (hotkey.isEmpty() ? "Enrich && Paste"
                                                : "Enrich && Paste (" + hotkey + ")"),
                     qPrintable(name + (": " + title)));
            entry(statusMenu(), "About Brindle")->trigger();
            QTRY_VERIFY2(!platform.alerts->shown.isEmpty(), name);
            const QString about = platform.alerts->shown.takeLast().informativeText;
            QVERIFY2(about == greeting + (hotkey.isEmpty() ? QString() : "\n\nHotkey: " + hotkey),
                     qPrintable(name + (": " + about)));
        }
    }

    void updatesAreTheSoftwareCentresBusiness() {
        FakePlatform platform;
        Settings::shared().email = "ann@h.example";
        Application application;
        application.finishLaunching();
        entry(statusMenu(), "Check for Updates…")->trigger();
        QTRY_COMPARE(platform.workspace->urls, QStringList("appstream://org.ostrowind.brindle"));
        QVERIFY(platform.alerts->shown.isEmpty());
        platform.workspace->opensUrls = false;
        entry(statusMenu(), "Check for Updates…")->trigger();
        QTRY_COMPARE(platform.alerts->shown.size(), 1);
        QCOMPARE(platform.alerts->shown[0].message, "Updates come from your package manager");
        QCOMPARE(platform.takeLog().constLast(),
                 "app: nothing on this desktop opens appstream://org.ostrowind.brindle");
    }

    void editEntriesAreEnabledWhenTheyCanAct() {
        Fields fields;
        QVERIFY(QTest::qWaitForWindowActive(fields.window.get()));
        struct Case {
            const char *name;
            QWidget *field;
            std::function<void()> prepare;
            QStringList enabled;
        };
        const QList<Case> cases{
            {"empty field", fields.line, [] {}, {"Paste"}},
            {"typed",
             fields.line,
             [&] { QTest::keyClicks(fields.line, "ab"); },
             {"Undo", "Paste", "Select All"}},
            {"undone", fields.line, [&] { fields.line->undo(); }, {"Redo", "Paste"}},
            {"selected",
             fields.line,
             [&] { fields.line->redo(), fields.line->selectAll(); },
             {"Undo", "Cut", "Copy", "Paste", "Select All"}},
            {"selected password",
             fields.password,
             [&] { fields.password->selectAll(); },
             {"Paste", "Select All"}},
            {"typed text",
             fields.text,
             [&] { QTest::keyClicks(fields.text, "ab"); },
             {"Undo", "Paste", "Select All"}},
            {"selected text",
             fields.text,
             [&] { fields.text->selectAll(); },
             {"Undo", "Cut", "Copy", "Paste", "Select All"}},
            {"log", fields.log, [] {}, {"Select All"}},
            {"selected log", fields.log, [&] { fields.log->selectAll(); }, {"Copy", "Select All"}},
            {"label", fields.label, [] {}, {"Select All"}},
            {"selected label",
             fields.label,
             [&] { fields.label->setSelection(0, 3); },
             {"Copy", "Select All"}},
        };
        for (const Case &row : cases) {
            fields.line->deselect();
            fields.log->moveCursor(QTextCursor::Start);
            fields.label->setSelection(0, 0);
            row.field->setFocus();
            row.prepare();
            const QStringList enabled = fields.enabled();
            QVERIFY2(enabled == row.enabled, qPrintable(row.name + (": " + enabled.join(", "))));
        }
    }

    void editEntriesActOnWhatHasTheFocus() {
        Fields fields;
        QVERIFY(QTest::qWaitForWindowActive(fields.window.get()));
        const auto choose = [&](const QString &title) { entry(fields.menu(), title)->trigger(); };
        QTest::keyClicks(fields.line, "ab");
        fields.line->setFocus();
        choose("Undo");
        QCOMPARE(fields.line->text(), "");
        choose("Redo");
        QCOMPARE(fields.line->text(), "ab");
        choose("Select All");
        choose("Cut");
        QCOMPARE(fields.line->text(), "");
        fields.text->setFocus();
        choose("Paste");
        QCOMPARE(fields.text->toPlainText(), "ab");
        choose("Undo");
        QCOMPARE(fields.text->toPlainText(), "");
        choose("Redo");
        QCOMPARE(fields.text->toPlainText(), "ab");
    }

    void labelsAreCopied() {
        Fields fields;
        QVERIFY(QTest::qWaitForWindowActive(fields.window.get()));
        QClipboard *clipboard = QApplication::clipboard();
        fields.label->setFocus();
        QTest::keyClick(fields.window.get(), Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(fields.label->selectedText(), "Network error");
        QTest::keyClick(fields.window.get(), Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(clipboard->text(), "Network error");
        QVERIFY(clipboard->mimeData()->hasHtml());

        // A selection made with the mouse stays when the focus is elsewhere; that is copied then.
        fields.line->setFocus();
        fields.label->setSelection(8, 5);
        QTest::keyClick(fields.window.get(), Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(clipboard->text(), "error");

        // The menu bar takes the focus while it is used from the keyboard.
        fields.label->setSelection(0, 0);
        fields.log->setFocus();
        fields.log->selectAll();
        fields.window->menuBar()->setFocus();
        entry(fields.menu(), "Copy")->trigger();
        QCOMPARE(clipboard->text(), "line 1");
    }
};

QTEST_MAIN(TestAppMenus)
#include "test_app_menus.moc"
