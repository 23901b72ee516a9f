#include "desktop/HotkeyManager.h"
#include "desktop/LoginItem.h"
#include "desktop/Notify.h"
#include "fakes/FakePlatform.h"
#include "platform/wording.h"

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

        platform.hotkeys->taken = {{9, 6400}};
        manager.install({{9, 6400}, {38, 256}}, [] {});
        QCOMPARE(registered.size(), 1);
        QCOMPARE(platform.takeLog().constLast(), "hotkey: ⌃⌥⌘V is taken by another program");
        setWording(linuxWording());
        manager.install({{9, 6400}}, [] {});
        QCOMPARE(platform.takeLog().constLast(),
                 "hotkey: Ctrl+Alt+Super+V is taken by another program");
        manager.uninstall();
    }

    void loginItemIsOnWhileItIsRegistered_data() {
        QTest::addColumn<LoginItems::Status>("status");
        QTest::addColumn<bool>("isEnabled");
        QTest::addColumn<QString>("name");
        using Status = LoginItems::Status;
        QTest::newRow("not registered") << Status::NotRegistered << false << "notRegistered";
        QTest::newRow("enabled") << Status::Enabled << true << "enabled";
        QTest::newRow("switched off elsewhere")
            << Status::RequiresApproval << true << "requiresApproval";
        QTest::newRow("not found") << Status::NotFound << false << "notFound";
        QTest::newRow("new to us") << Status(7) << false << "unknown(7)";
    }

    void loginItemIsOnWhileItIsRegistered() {
        QFETCH(LoginItems::Status, status);
        FakePlatform platform;
        platform.loginItems->current = status;
        QTEST(LoginItem::isEnabled(), "isEnabled");
        QFETCH(QString, name);
        QCOMPARE(platform.takeLog(), QStringList("LoginItem.isEnabled: status = " + name));
    }

    void loginItemIsSwitchedAndAFailureTold() {
        FakePlatform platform;
        QVERIFY(LoginItem::setEnabled(true));
        QVERIFY(LoginItem::setEnabled(false));
        QCOMPARE(platform.takeLog(),
                 (QStringList{"LoginItem.setEnabled(true): registered, status now enabled",
                              "LoginItem.setEnabled(false): unregistered, status now "
                              "notRegistered"}));
        QVERIFY(platform.notifications->shown.isEmpty());
        platform.loginItems->error = "disk full";
        for (const bool enabled : {true, false}) {
            QVERIFY(!LoginItem::setEnabled(enabled));
            QCOMPARE(platform.takeLog(),
                     (QStringList{QString("LoginItem.setEnabled(%1): error disk full")
                                      .arg(enabled ? "true" : "false"),
                                  "notify: Launch at login change failed: disk full"}));
            QCOMPARE(platform.notifications->shown,
                     QStringList("Brindle|Launch at login change failed: disk full"));
            platform.notifications->shown.clear();
        }
    }

    void notificationIsLoggedAndShownOnOneLine() {
        FakePlatform platform;
        Notify::show("Brindle", "a \"b\"\r\nc");
        QCOMPARE(platform.notifications->shown, QStringList("Brindle|a \"b\"  c"));
        platform.notifications->failure = "no server";
        Notify::show("Brindle", "x");
        QCOMPARE(platform.takeLog().constLast(), "notify: notification failed: no server");
    }
};

QTEST_GUILESS_MAIN(TestDesktop)
#include "test_desktop.moc"
