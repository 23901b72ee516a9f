#include "e2e/ClipboardManager.h"
#include "stage/Actors.h"
#include "stage/BrindleProcess.h"
#include "stage/ClipboardReader.h"
#include "stage/Keyring.h"
#include "stage/StatusArea.h"
#include "stage/VirtualDesktop.h"
#include "stage/Windows.h"
#include "support/NotificationLog.h"

#include <QTest>

#include <csignal>

namespace {

/// A desktop and what is needed to start Brindle on it as a user with credentials.
struct Scene {
    explicit Scene(DesktopOptions options = {}) : desktop(withKeyring(std::move(options))) {
        hasToken = storeToken(desktop, "jira-api-token", "t1");
    }

    static DesktopOptions withKeyring(DesktopOptions options) {
        options.keyring = true;
        return options;
    }

    void start(QMap<QString, QString> settings = {}) {
        settings.insert("jiraEmail", "ann@h.example");
        settings.insert("accountBaseURL", "https://r.example/");
        brindle = std::make_unique<BrindleProcess>(desktop, settings);
    }

    bool isUp() { return desktop.problem().isEmpty() && hasToken && brindle->isUp(); }

    VirtualDesktop desktop;
    bool hasToken = false;
    std::unique_ptr<BrindleProcess> brindle;
};

/// The quarter of a picture at its bottom right, where the badge is.
QImage corner(const QImage &picture) {
    return picture.copy(picture.width() / 2, picture.height() / 2, picture.width(),
                        picture.height());
}

} // namespace

class TestE2eDesktop : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void trayShowsTheMenuAndItWorks() {
        Scene scene({.notifications = true});
        const StatusArea area(scene.desktop.bus());
        QVERIFY(area.isThere());
        scene.start({{"hotkeyKeyCode", "38"}, {"hotkeyModifiers", "2304"}});
        QVERIFY(waitFor([&] { return area.items().size() == 1; }));
        QVERIFY(scene.isUp());
        QCOMPARE(area.menu(),
                 (QStringList{"Enrich & Paste (⌥⌘J)", "Enrich Clipboard Only", "-", "Preferences…",
                              "View Logs…", "-", "About Brindle", "Check for Updates…", "Quit"}));
        const NotificationLog shown(scene.desktop.busAddress());
        const ClipboardOwner owner(scene.desktop, {{"UTF8_STRING", "507f1f77bcf86cd799439011"}});
        QVERIFY(area.choose("Enrich Clipboard Only"));
        QVERIFY(shown.waitForAccepted(1));
        QCOMPARE(shown.notifications()[0].body,
                 "Clipboard: https://r.example/507f1f77bcf86cd799439011");

        QVERIFY(windowTitles(scene.desktop.display()).isEmpty());
        QVERIFY(area.choose("View Logs…"));
        QVERIFY(area.choose("Preferences…"));
        QVERIFY(waitFor([&] {
            const QStringList titles = windowTitles(scene.desktop.display());
            return titles.contains("Brindle Logs") && titles.contains("Settings");
        }));
        QVERIFY(area.choose("About Brindle"));
        QVERIFY(waitFor([&] { return windowTitles(scene.desktop.display()).size() == 3; }));
        QVERIFY(area.choose("Quit"));
        QVERIFY(waitFor([&] { return scene.brindle->state() == QProcess::NotRunning; }));
        QCOMPARE(scene.brindle->exitCode(), 0);
    }

    void iconFollowsThePanelAndTheTokensAge() {
        Scene scene;
        scene.start();
        QVERIFY(scene.isUp());
        QImage plain;
        for (int panel = 0; panel < 2; ++panel) { // one that comes late, and that again
            const StatusArea area(scene.desktop.bus());
            QVERIFY(waitFor([&] { return area.items().size() == 1; }));
            QVERIFY(area.menu().contains("Quit"));
            plain = area.picture();
            QVERIFY(plain.width() >= 32);
        }
        scene.brindle.reset();
        scene.start({{"tokenSavedAt", "1000000000"}});
        const StatusArea area(scene.desktop.bus());
        QVERIFY(waitFor([&] { return area.items().size() == 1; }));
        QVERIFY(corner(area.picture()) != corner(plain));
    }

    void missingCredentialsAreAskedForAtLaunch_data() {
        QTest::addColumn<bool>("hasEmail");
        QTest::newRow("no address") << false;
        QTest::newRow("no token") << true;
    }

    void missingCredentialsAreAskedForAtLaunch() {
        QFETCH(bool, hasEmail);
        VirtualDesktop desktop({.notifications = true, .keyring = true});
        QVERIFY(desktop.problem().isEmpty());
        QVERIFY(hasEmail || storeToken(desktop, "jira-api-token", "t1"));
        const NotificationLog shown(desktop.busAddress());
        BrindleProcess brindle(desktop, {{"jiraEmail", hasEmail ? "ann@h.example" : ""}});
        QVERIFY(shown.waitForAccepted(1));
        QCOMPARE(shown.notifications()[0].body,
                 "Set your Atlassian email + scoped API token in Preferences.");
        QVERIFY(waitFor([&] { return windowTitles(desktop.display()).contains("Settings"); }));
    }

    void secondStartOpensThePreferencesOfTheFirst() {
        Scene scene;
        scene.start();
        QVERIFY(scene.isUp());
        BrindleProcess second(scene.desktop, {});
        QVERIFY(waitFor([&] { return second.state() == QProcess::NotRunning; }));
        QCOMPARE(second.exitCode(), 0);
        QVERIFY(waitFor(
            [&] { return windowTitles(scene.desktop.display()) == QStringList("Settings"); }));
        QVERIFY(scene.brindle->isUp());
    }

    void terminatingGivesTheClipboardBackFirst() {
        Scene scene;
        scene.start();
        QVERIFY(scene.isUp());
        PasteTarget target(scene.desktop);
        QVERIFY(waitFor([&] { return target.hasFocus(); }));
        const ClipboardOwner owner(scene.desktop, {{"UTF8_STRING", "507f1f77bcf86cd799439011"}});
        const ClipboardManager manager(scene.desktop.display());
        QVERIFY(waitFor([&] { return manager.isThere(); }));
        QVERIFY(scene.brindle->activate("enrich"));
        QVERIFY(target.waitForPaste());
        kill(static_cast<pid_t>(scene.brindle->processId()), SIGTERM);
        QVERIFY(waitFor([&] { return scene.brindle->state() == QProcess::NotRunning; }));
        QCOMPARE(scene.brindle->exitStatus(), QProcess::NormalExit);
        QVERIFY(manager.hasSaved());
        // The manager holds what the user had copied, not the link.
        QVERIFY(waitFor([&] {
            return ClipboardReader(scene.desktop.display()).data("UTF8_STRING") ==
                   "507f1f77bcf86cd799439011";
        }));
    }
};

QTEST_GUILESS_MAIN(TestE2eDesktop)
#include "test_e2e_desktop.moc"
