#include "desktop/HotkeyManager.h"
#include "preferences/PreferencesScene.h"
#include "preferences/hotkey/HotkeyRecorder.h"
#include "preferences/kit/ResultLine.h"

#include <QPushButton>

namespace {

const QString unavailableText = "Brindle can't have a hotkey here: no keys today. Let a keyboard "
                                "shortcut of the desktop run this command:";
const QString consentText = "Pasting needs your permission on this desktop.";
const QString noKeysText = "Brindle can't paste here: no keys today. Links are copied for you to "
                           "paste.";

/// The texts of the buttons of the General tab that can be seen.
QStringList buttons(const PreferencesView &view) {
    QStringList titles;
    for (const QPushButton *button : view.findChildren<QPushButton *>()) {
        if (button->isVisible())
            titles.append(button->text());
    }
    return titles;
}

qsizetype visibleRecorders(const PreferencesView &view) {
    qsizetype count = 0;
    for (const HotkeyRecorder *recorder : view.findChildren<HotkeyRecorder *>())
        count += recorder->isVisible();
    return count;
}

/// What the line about the desktop says; empty when it is not shown.
QString notice(const PreferencesView &view) {
    for (const ResultLine *line : view.findChildren<ResultLine *>()) {
        if (line->isVisible())
            return line->text();
    }
    return {};
}

/// The user comes back to the window.
void showAgain(PreferencesView &view) {
    view.hide();
    view.show();
}

} // namespace

/// What the General tab shows where the desktop offers less than all.
class TestPreferencesDesktop : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hotkeyThatIsTheDesktops_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("line");
        QTest::addColumn<bool>("hasSettings");
        QTest::addColumn<QString>("unavailable");
        QTest::addColumn<QString>("clipboard");
        QTest::addColumn<QString>("shownText");
        QTest::addColumn<QString>("shownLine");
        QTest::addColumn<QStringList>("shownButtons");
        const QString line = "<keybind key=\"W-v\">";
        QTest::newRow("a line to copy")
            << "Put this there:" << line << false << "no way" << QString()
            << "Put this there:" << line << QStringList{"Copy"};
        QTest::newRow("settings") << "Ctrl+Alt+V" << QString() << true << QString() << QString()
                                  << "Ctrl+Alt+V" << QString()
                                  << QStringList{"Open Shortcut Settings"};
        QTest::newRow("a question to be asked again")
            << "You said no." << QString() << true << "you said no" << QString() << "You said no."
            << QString() << QStringList{"Ask for a Hotkey"};
        QTest::newRow("both") << "Do this:" << line << true << QString() << QString()
                              << "Do this:" << line
                              << QStringList{"Copy", "Open Shortcut Settings"};
        QTest::newRow("a line, and no clipboard")
            << "Put this there:" << line << false << QString() << "gone"
            << "Put this there:" << line << QStringList();
        QTest::newRow("no hotkeys")
            << QString() << QString() << false << "no keys today" << QString() << unavailableText
            << "brindle paste" << QStringList{"Copy"};
    }
    void hotkeyThatIsTheDesktops() {
        QFETCH(QString, text);
        QFETCH(QString, line);
        QFETCH(bool, hasSettings);
        QFETCH(QString, unavailable);
        QFETCH(QString, clipboard);
        QFETCH(QString, shownText);
        QFETCH(QString, shownLine);
        QFETCH(QStringList, shownButtons);
        PreferencesScene scene;
        QCOMPARE(visibleRecorders(*scene.view), 2);
        int settingsOpened = 0;
        if (!text.isEmpty())
            scene.hotkeys->choice = {text, {}, line};
        const QString button = hasSettings ? shownButtons.constLast() : QString();
        if (hasSettings)
            scene.hotkeys->choice->openSettings = [&] { ++settingsOpened; };
        if (hasSettings && button != "Open Shortcut Settings")
            scene.hotkeys->choice->action = button;
        scene.hotkeys->unavailable = unavailable;
        scene.pasteboard->unavailable = clipboard;
        HotkeyManager::shared().install({}, {}); // the desktop has answered

        QCOMPARE(visibleRecorders(*scene.view), 0);
        QCOMPARE(scene.count(shownText), 1);
        QCOMPARE(scene.count(shownLine), shownLine.isEmpty() ? 0 : 1);
        QCOMPARE(buttons(*scene.view), shownButtons);
        if (auto *copy = scene.find<QPushButton>("Copy")) {
            scene.click(copy);
            QCOMPARE(scene.pasteboard->text(PasteboardType::String), shownLine);
        }
        if (auto *open = hasSettings ? scene.find<QPushButton>(button) : nullptr)
            scene.click(open);
        QCOMPARE(settingsOpened, hasSettings ? 1 : 0);

        scene.hotkeys->choice.reset();
        scene.hotkeys->unavailable.clear();
        showAgain(*scene.view);
        QCOMPARE(visibleRecorders(*scene.view), 2);
        QCOMPARE(scene.count(shownText), 0);
    }

    void lineThatCanNotBeCopiedIsLogged() {
        PreferencesScene scene;
        scene.hotkeys->choice = {"Put this there:", {}, "x"};
        showAgain(*scene.view);
        scene.pasteboard->refusesWrites = true;
        scene.takeLog();
        scene.click(scene.find<QPushButton>("Copy"));
        QCOMPARE(scene.takeLog(),
                 QStringList("preferences: the line for the hotkey could not be copied"));
    }

    void whatIsMissingIsToldInOneLine_data() {
        using State = PasteAccess::State;
        QTest::addColumn<QString>("clipboard");
        QTest::addColumn<PasteAccess::State>("keys");
        QTest::addColumn<QString>("offer");
        QTest::addColumn<QString>("line");
        const QString ask = "Ask for Permission";
        QTest::newRow("all is well") << QString() << State::Ready << QString() << QString();
        QTest::newRow("no clipboard") << "no server" << State::Ready << QString()
                                      << "Brindle can't reach the clipboard: no server.";
        QTest::newRow("no keys") << QString() << State::Impossible << QString() << noKeysText;
        QTest::newRow("no keys yet") << QString() << State::Impossible << ask
                                     << "Pasting needs your permission on this desktop: no keys "
                                        "today. Until then links are copied for you to paste.";
        QTest::newRow("neither") << "no server" << State::Impossible << QString()
                                 << "Brindle can't reach the clipboard: no server.";
        QTest::newRow("keys wait") << QString() << State::NeedsConsent << ask << consentText;
        QTest::newRow("no clipboard, keys wait") << "no server" << State::NeedsConsent << ask
                                                 << "Brindle can't reach the clipboard: no server.";
    }
    void whatIsMissingIsToldInOneLine() {
        QFETCH(QString, clipboard);
        QFETCH(PasteAccess::State, keys);
        QFETCH(QString, offer);
        QFETCH(QString, line);
        PreferencesScene scene;
        QCOMPARE(notice(*scene.view), QString());
        scene.pasteboard->unavailable = clipboard;
        scene.pasteKeys->granted = {keys, "no keys today", offer};
        showAgain(*scene.view);
        QCOMPARE(notice(*scene.view), line);
        QCOMPARE(scene.find<QPushButton>("Ask for Permission") != nullptr,
                 !offer.isEmpty() && clipboard.isEmpty());
        QCOMPARE(scene.pasteKeys->requests, 0); // nobody is asked by surprise
    }

    void consentIsAskedForByTheButton_data() {
        using State = PasteAccess::State;
        QTest::addColumn<PasteAccess::State>("answer");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("logged");
        QTest::newRow("given") << State::Ready << QString() << "access: permission to paste given";
        QTest::newRow("not given") << State::NeedsConsent << consentText
                                   << "access: no permission to paste (no keys today)";
        QTest::newRow("no longer possible")
            << State::Impossible << noKeysText << "access: no permission to paste (no keys today)";
    }
    void consentIsAskedForByTheButton() {
        QFETCH(PasteAccess::State, answer);
        QFETCH(QString, line);
        QFETCH(QString, logged);
        PreferencesScene scene;
        scene.pasteKeys->granted = {PasteAccess::State::NeedsConsent, {}, "Ask for Permission"};
        scene.pasteKeys->answered = {answer, "no keys today"};
        showAgain(*scene.view);
        scene.takeLog();
        scene.click(scene.find<QPushButton>("Ask for Permission"));
        QCOMPARE(scene.pasteKeys->requests, 1);
        QCOMPARE(notice(*scene.view), line);
        QCOMPARE(scene.takeLog(), (QStringList{"access: asking for permission to paste", logged}));
        auto *again = scene.find<QPushButton>("Ask for Permission");
        QVERIFY(!again || again->isEnabled());
    }
};

QTEST_MAIN(TestPreferencesDesktop)
#include "test_preferences_desktop.moc"
