#include "desktop/HotkeyManager.h"
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

        platform.hotkeys->taken = {{9, 6400}};
        manager.install({{9, 6400}, {38, 256}}, [] {});
        QCOMPARE(registered.size(), 1);
        QVERIFY(
            platform.takeLog().constLast().startsWith("hotkey: ⌃⌥⌘V is taken by another program"));
        manager.uninstall();
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
