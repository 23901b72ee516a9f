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

/// The mean opacity of the inked part of a picture, 0 to 255.
double ink(const QImage &image) {
    double sum = 0;
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (const int alpha = qAlpha(image.pixel(x, y)); alpha > 8) {
                sum += alpha;
                ++count;
            }
        }
    }
    return count > 0 ? sum / count : 0;
}

/// The share of the bottom right quarter that is inked, 0 to 1.
double inkAtBottomRight(const QImage &image) {
    int count = 0;
    for (int y = image.height() / 2; y < image.height(); ++y) {
        for (int x = image.width() / 2; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) > 128 ? 1 : 0;
    }
    return 4.0 * count / (image.width() * image.height());
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
        {
            const StatusArea late(scene.desktop.bus());
            QVERIFY(waitFor([&] { return late.items().size() == 1; }));
            plain = late.picture();
            QVERIFY(plain.width() >= 32);
            QVERIFY(ink(plain) > 200);
        }
        scene.brindle.reset();
        scene.start({{"tokenSavedAt", "1000000000"}});
        const StatusArea again(scene.desktop.bus());
        QVERIFY(waitFor([&] { return again.items().size() == 1; }));
        const QImage badged = again.picture();
        QVERIFY(inkAtBottomRight(badged) > inkAtBottomRight(plain) + 0.1);
    }

    void panelThatRestartsGetsTheIconAgain() {
        Scene scene;
        auto area = std::make_unique<StatusArea>(scene.desktop.bus());
        scene.start();
        QVERIFY(waitFor([&] { return area->items().size() == 1; }));
        QVERIFY(scene.isUp());
        area.reset();
        area = std::make_unique<StatusArea>(scene.desktop.bus());
        QVERIFY(waitFor([&] { return !area->items().isEmpty(); }));
        QVERIFY(area->menu().contains("Quit"));
    }

    void missingCredentialsAreAskedForAtLaunch_data() {
        QTest::addColumn<bool>("hasEmail");
        QTest::addColumn<bool>("hasToken");
        QTest::addColumn<bool>("asks");
        QTest::newRow("both") << true << true << false;
        QTest::newRow("no address") << false << true << true;
        QTest::newRow("no token") << true << false << true;
    }

    void missingCredentialsAreAskedForAtLaunch() {
        QFETCH(bool, hasEmail);
        QFETCH(bool, hasToken);
        QFETCH(bool, asks);
        VirtualDesktop desktop({.notifications = true, .keyring = true});
        QVERIFY(desktop.problem().isEmpty());
        QVERIFY(!hasToken || storeToken(desktop, "jira-api-token", "t1"));
        const NotificationLog shown(desktop.busAddress());
        BrindleProcess brindle(desktop, {{"jiraEmail", hasEmail ? "ann@h.example" : ""}});
        QVERIFY(brindle.isUp());
        if (asks) {
            QVERIFY(shown.waitForAccepted(1));
            QCOMPARE(shown.notifications()[0].body,
                     "Set your Atlassian email + scoped API token in Preferences.");
            QVERIFY(waitFor([&] { return windowTitles(desktop.display()).contains("Settings"); }));
        } else {
            QTest::qWait(1000);
            QVERIFY(shown.notifications().isEmpty());
            QVERIFY(windowTitles(desktop.display()).isEmpty());
        }
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
