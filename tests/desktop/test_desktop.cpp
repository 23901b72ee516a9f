#include "desktop/HotkeyManager.h"
#include "desktop/LoginItem.h"
#include "desktop/Notify.h"
#include "fakes/FakePlatform.h"

#include <QTest>

class TestDesktop : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hotkeysReplaceEachOtherAndRunTheHandlerLater() {
        FakePlatform platform;
        HotkeyManager &manager = HotkeyManager::shared();
        QStringList runs;
        manager.install({{9, 6400}}, [&] { runs.append("first"); });
        manager.install({{9, 6400}, {0, 256}, {38, 0}, {49, 768}}, [&] { runs.append("second"); });
        const auto &registered = platform.hotkeys->registered;
        QCOMPARE(registered.size(), 2);
        QCOMPARE(registered[1].first, (KeyCombo{49, 768}));
        registered[0].second();
        registered[1].second();
        QVERIFY(runs.isEmpty());
        platform.dispatch->drain();
        QCOMPARE(runs, QStringList({"second", "second"}));

        registered[0].second();
        manager.uninstall();
        platform.dispatch->drain();
        QCOMPARE(runs.size(), 2);
        QVERIFY(registered.isEmpty());
    }

    void takenHotkeyIsLoggedAndTheOtherWorks() {
        FakePlatform platform;
        platform.hotkeys->taken = {{9, 6400}};
        HotkeyManager::shared().install({{9, 6400}, {38, 256}}, [] {});
        QCOMPARE(platform.hotkeys->registered.size(), 1);
        QCOMPARE(platform.takeLog(),
                 QStringList("hotkey: ⌃⌥⌘V is not available (taken by another program, or no such "
                             "key)"));
        HotkeyManager::shared().uninstall();
    }

    void notificationIsLoggedAndShownOnOneLine() {
        FakePlatform platform;
        Notify::show("Brindle", "a \"b\"\r\nc");
        QCOMPARE(platform.notifications->shown, QStringList("Brindle|a \"b\"  c"));
        platform.notifications->failure = "no server";
        Notify::show("Brindle", "x");
        QCOMPARE(platform.takeLog(), QStringList({"notify: a \"b\"\r\nc", "notify: x",
                                                  "notify: notification failed: no server"}));
    }

    void loginItemStatus_data() {
        QTest::addColumn<int>("status");
        QTest::addColumn<bool>("on");
        QTest::addColumn<QString>("text");
        QTest::newRow("none") << 0 << false << "notRegistered";
        QTest::newRow("on") << 1 << true << "enabled";
        QTest::newRow("switched off by the desktop") << 2 << true << "requiresApproval";
        QTest::newRow("program gone") << 3 << false << "notFound";
        QTest::newRow("one of the future") << 7 << false << "unknown(7)";
    }

    void loginItemStatus() {
        QFETCH(int, status);
        QFETCH(QString, text);
        FakePlatform platform;
        platform.loginItems->current = static_cast<LoginItems::Status>(status);
        QTEST(LoginItem::isEnabled(), "on");
        QCOMPARE(platform.takeLog(), QStringList("LoginItem.isEnabled: status = " + text));
    }

    void loginItemChangesAreLoggedAndFailuresTold() {
        FakePlatform platform;
        QVERIFY(LoginItem::setEnabled(true));
        QVERIFY(LoginItem::setEnabled(false));
        platform.loginItems->error = "disk full";
        QVERIFY(!LoginItem::setEnabled(true));
        QCOMPARE(platform.takeLog(),
                 QStringList({"LoginItem.setEnabled(true): registered, status now enabled",
                              "LoginItem.setEnabled(false): unregistered, status now notRegistered",
                              "LoginItem.setEnabled(true): error disk full",
                              "notify: Launch at login change failed: disk full"}));
        QCOMPARE(platform.notifications->shown,
                 QStringList("Brindle|Launch at login change failed: disk full"));
    }
};

QTEST_GUILESS_MAIN(TestDesktop)
#include "test_desktop.moc"
