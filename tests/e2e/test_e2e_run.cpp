#include "stage/Actors.h"
#include "stage/BrindleProcess.h"
#include "stage/ClipboardReader.h"
#include "stage/Keyring.h"
#include "stage/VirtualDesktop.h"
#include "stage/VirtualKeyboard.h"
#include "stage/Windows.h"
#include "support/NotificationLog.h"

#include <QElapsedTimer>
#include <QTest>

#include <linux/input-event-codes.h>

namespace {

const QString record = "507f1f77bcf86cd799439011";
const QString recordLink = "https://app.example.com/records/507f1f77bcf86cd799439011";

const QList<int> hotkey{keyCode(KEY_LEFTCTRL), keyCode(KEY_LEFTALT), keyCode(KEY_LEFTMETA),
                        keyCode(KEY_V)};

/// A user at a desktop with Brindle running, an application in front and something copied.
struct Scene {
    explicit Scene(const DesktopOptions &options = {}, const QString &format = "urlOnly",
                   const QStringList &targetArguments = {})
        : desktop(withKeyring(options)),
          keys(desktop.keyboardDisplay()),
          hasToken(storeToken(desktop, "jira-api-token", "t1")),
          brindle(desktop, {{"accountBaseURL", "https://app.example.com/records/"},
                            {"accountPasteFormat", format},
                            {"jiraEmail", "ann@h.example"}}),
          target(desktop, targetArguments) {}

    /// A user with credentials is not asked for them at launch.
    static DesktopOptions withKeyring(DesktopOptions options) {
        options.keyring = true;
        return options;
    }

    bool isUp() {
        return desktop.problem().isEmpty() && hasToken && brindle.isUp() &&
               waitFor([this] { return target.hasFocus(); });
    }

    void press() { keys.chord({hotkey[0], hotkey[1], hotkey[2], hotkey[3]}); }

    QString clipboard(const QString &name = "UTF8_STRING") {
        return QString::fromUtf8(
            ClipboardReader(desktop.display()).data(name).value_or("(nothing)"));
    }

    bool clipboardBecomes(const QString &text) {
        return waitFor([&] { return clipboard() == text; });
    }

    VirtualDesktop desktop;
    VirtualKeyboard keys;
    bool hasToken;
    BrindleProcess brindle;
    PasteTarget target;
};

QList<OwnedFlavour> copied(const QString &text) {
    return {{"text/html", "<p>" + text.toUtf8() + "</p>"}, {"UTF8_STRING", text.toUtf8()}};
}

} // namespace

class TestE2eRun : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pastesTheLinkAndGivesTheClipboardBack_data() {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("rich");
        QTest::newRow("rich link") << "richLink" << record + " (" + recordLink + ")" << true;
        QTest::newRow("Markdown") << "markdown"
                                  << "[" + record + "](" + recordLink + ")" << false;
        QTest::newRow("plain text") << "plainText" << record + " (" + recordLink + ")" << false;
        QTest::newRow("URL only") << "urlOnly" << recordLink << false;
    }

    void pastesTheLinkAndGivesTheClipboardBack() {
        QFETCH(QString, format);
        QFETCH(bool, rich);
        Scene scene({}, format);
        QVERIFY(scene.isUp());
        const ClipboardOwner owner(scene.desktop, copied(record.toUpper()));
        scene.press();
        const auto paste = scene.target.waitForPaste();
        QVERIFY(paste);
        QCOMPARE(paste->via, "Ctrl+V");
        QTEST(paste->text, "text");
        QCOMPARE(paste->html,
                 rich ? "<a href=\"" + recordLink + "\">" + record + "</a>" : QString());
        QCOMPARE(paste->rtf.contains("HYPERLINK \"" + recordLink.toUtf8()), rich);
        QVERIFY(scene.clipboardBecomes(record.toUpper()));
        QCOMPARE(scene.clipboard("text/html"), "<p>" + record.toUpper() + "</p>");
        QCOMPARE(scene.target.pasteCount(), 1);
        QCOMPARE(scene.target.typed(), QString());
        QCOMPARE(heldKeys(scene.desktop.display()), QList<int>());
    }

    void clipboardWithoutTextIsLeftAlone_data() {
        QTest::addColumn<QString>("flavour");
        QTest::addColumn<QStringList>("behaviour");
        QTest::newRow("image") << "image/png" << QStringList();
        QTest::newRow("owner that hangs") << "UTF8_STRING" << QStringList("--never-answer");
    }

    void clipboardWithoutTextIsLeftAlone() {
        QFETCH(QString, flavour);
        QFETCH(QStringList, behaviour);
        Scene scene({.notifications = true});
        QVERIFY(scene.isUp());
        const NotificationLog shown(scene.desktop.busAddress());
        const ClipboardOwner owner(scene.desktop, {{flavour, record.toUtf8()}}, behaviour);
        scene.press();
        QVERIFY(shown.waitForAccepted(1));
        QCOMPARE(shown.notifications()[0].title, "Brindle");
        QCOMPARE(shown.notifications()[0].body, "Clipboard is empty or not text.");
        QVERIFY(owner.ownsClipboard());
        QCOMPARE(scene.target.pasteCount(), 0);
    }

    void copyMadeWithinTheHalfSecondStays() {
        Scene scene;
        QVERIFY(scene.isUp());
        const ClipboardOwner owner(scene.desktop, copied(record));
        scene.press();
        QVERIFY(scene.target.waitForPaste());
        const ClipboardOwner newer(scene.desktop, copied("something newer"));
        QVERIFY(newer.ownsClipboard());
        QTest::qWait(2500); // longer than any restore may take
        QVERIFY(newer.ownsClipboard());
        QCOMPARE(scene.clipboard(), "something newer");
    }

    void secondPressInFlightIsIgnored() {
        Scene scene;
        QVERIFY(scene.isUp());
        const ClipboardOwner owner(scene.desktop, copied(record));
        scene.press();
        scene.press();
        QVERIFY(scene.target.waitForPaste());
        scene.press();
        QVERIFY(scene.clipboardBecomes(record));
        QCOMPARE(scene.target.pasteCount(), 1);
        // The flag falls in the same turn as the restore, which is over once the text can be read.
        scene.press();
        QVERIFY(scene.target.waitForPaste(1));
        QVERIFY(scene.clipboardBecomes(record));
    }

    void secureInputLeavesTheLinkForTheUser_data() {
        QTest::addColumn<QString>("command");
        QTest::newRow("another client holds the keyboard") << "grab on";
        QTest::newRow("a password field is in focus") << "password on";
    }

    void secureInputLeavesTheLinkForTheUser() {
        QFETCH(QString, command);
        Scene scene({.notifications = true, .accessibility = true});
        QVERIFY(scene.isUp());
        const NotificationLog shown(scene.desktop.busAddress());
        const ClipboardOwner owner(scene.desktop, copied(record));
        QVERIFY(scene.target.command(command));
        QTest::qWait(500); // the application tells the accessibility bus in its own time
        // By the bus: no hotkey reaches anybody while the keyboard is held.
        QVERIFY(scene.brindle.activate("enrich"));
        QVERIFY(shown.waitForAccepted(1));
        QVERIFY(shown.notifications()[0].body.startsWith(
            "Couldn't paste: secure keyboard entry is active"));
        QVERIFY(shown.notifications()[0].body.endsWith("paste it with Ctrl+V."));
        QTest::qWait(1000);
        QCOMPARE(scene.clipboard(), recordLink);
        QCOMPARE(scene.target.pasteCount(), 0);
    }

    void heldHotkeyPastesOnceTheFingersAreUp_data() {
        QTest::addColumn<int>("heldFor");
        QTest::addColumn<int>("pasteNotBefore");
        QTest::newRow("held for a moment") << 400 << 400;
        QTest::newRow("held for long") << 3000 << 900;
    }

    void heldHotkeyPastesOnceTheFingersAreUp() {
        QFETCH(int, heldFor);
        QFETCH(int, pasteNotBefore);
        Scene scene({.physicalKeyboard = true});
        QVERIFY(scene.isUp());
        const ClipboardOwner owner(scene.desktop, copied(record));
        for (int round = 0; round < 2; ++round) {
            scene.target.forgetEvents();
            QElapsedTimer held;
            held.start();
            for (const int key : hotkey)
                QVERIFY(scene.keys.press(key));
            qint64 pastedAfter = -1;
            const auto look = [&] {
                if (pastedAfter < 0 && scene.target.pasteCount() > 0)
                    pastedAfter = held.elapsed();
                return held.elapsed() >= heldFor;
            };
            QVERIFY(waitFor(look));
            for (auto key = hotkey.crbegin(); key != hotkey.crend(); ++key)
                QVERIFY(scene.keys.release(*key));
            const auto paste = scene.target.waitForPaste();
            QVERIFY(paste);
            QCOMPARE(paste->text, recordLink);
            QVERIFY2(pastedAfter < 0 || pastedAfter >= pasteNotBefore,
                     qPrintable(QString::number(pastedAfter)));
            QVERIFY(scene.clipboardBecomes(record));
            QCOMPARE(scene.target.pasteCount(), 1);
            QCOMPARE(scene.target.typed(), QString());
            QVERIFY(waitFor([&] { return heldKeys(scene.desktop.display()).isEmpty(); }));
            QTest::qWait(600); // the flag of the paste falls
        }
    }

    void busyTargetStillGetsTheLink() {
        Scene scene;
        QVERIFY(scene.isUp());
        const ClipboardOwner owner(scene.desktop, copied(record));
        scene.target.send("busy 1400");
        QVERIFY(!scene.target.waitForEvent("busy").isEmpty());
        scene.press();
        const auto paste = scene.target.waitForPaste();
        QVERIFY(paste);
        QCOMPARE(paste->text, recordLink);
        QVERIFY(scene.clipboardBecomes(record));
    }

    void terminalGetsItsOwnPasteKeys() {
        Scene scene({}, "plainText", {"--wm-class", "gnome-terminal-server"});
        QVERIFY(scene.isUp());
        const ClipboardOwner owner(scene.desktop, copied(record));
        scene.press();
        const auto paste = scene.target.waitForPaste();
        QVERIFY(paste);
        QCOMPARE(paste->via, "Ctrl+Shift+V");
    }

    void otherLayoutStillPastes() {
        Scene scene;
        QVERIFY(scene.isUp());
        QProcess setxkbmap;
        setxkbmap.setProcessEnvironment(scene.desktop.environment());
        setxkbmap.start("setxkbmap", {"us", "-variant", "dvorak"});
        QVERIFY(setxkbmap.waitForFinished() && setxkbmap.exitCode() == 0);
        const ClipboardOwner owner(scene.desktop, copied(record));
        scene.press(); // the same place on the keyboard
        const auto paste = scene.target.waitForPaste();
        QVERIFY(paste);
        QCOMPARE(paste->text, recordLink);
        QCOMPARE(scene.target.typed(), QString());
    }

    void withoutAnyServiceTheHotkeyStillWorks() {
        VirtualDesktop desktop({.bus = false});
        QVERIFY(desktop.problem().isEmpty());
        BrindleProcess brindle(desktop, {{"accountBaseURL", "https://app.example.com/records/"}});
        // Without a keyring there is no token, so the preferences open once all is up.
        QVERIFY(waitFor([&] { return windowTitles(desktop.display()).contains("Settings"); }));
        PasteTarget target(desktop);
        QVERIFY(waitFor([&] { return target.hasFocus(); }));
        const ClipboardOwner owner(desktop, copied(record));
        VirtualKeyboard keys(desktop.keyboardDisplay());
        keys.chord({hotkey[0], hotkey[1], hotkey[2], hotkey[3]});
        const auto paste = target.waitForPaste();
        QVERIFY(paste);
        QCOMPARE(paste->text, recordLink);
    }
};

QTEST_GUILESS_MAIN(TestE2eRun)
#include "test_e2e_run.moc"
