#include "e2e/Scene.h"
#include "support/ScreenReader.h"
#include "support/Unprivileged.h"

namespace {

DesktopOptions gnome() {
    return {.notifications = true,
            .keyring = true,
            .portal = true,
            .accessibility = true,
            .kind = DesktopKind::Gnome};
}

void shot(const Scene &scene, const QString &name) {
    QDBusConnection bus = scene.desktop.bus();
    bus.registerService("org.gnome.Screenshot");
    QDBusMessage call = QDBusMessage::createMethodCall("org.gnome.Shell.Screenshot", "/org/gnome/Shell/Screenshot", "org.gnome.Shell.Screenshot", "Screenshot");
    call << false << false << QString("/tmp/gnome-try/%1.png").arg(name);
    qInfo() << bus.call(call);
}

} // namespace

class TestE2eGnome : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void consent() {
        Scene scene(gnome());
        scene.start();
        QVERIFY2(scene.isUp(), qPrintable(scene.desktop.problem()));
        const ScreenReader reader(scene.desktop.bus());
        QVERIFY(scene.brindle->activate("preferences"));
        const Node ask = reader.find("push button", "Allow pasting until you log out");
        shot(scene, "1");
        QVERIFY(!ask.path.isEmpty());
        QVERIFY(ask.act());
        QTest::qWait(1500);
        for (const Node &node : reader.shown())
            qInfo() << node.role() << node.name() << node.property("Action", "NActions").toInt();
        shot(scene, "2");
        shot(scene, "3");
        for (const Node &node : reader.shown())
            qInfo() << node.role() << node.name();
        QVERIFY(scene.openTarget());
        shot(scene, "4");
        const ClipboardOwner owner(scene.desktop, scene.copied(record));
        scene.press();
        const auto paste = scene.target->waitForPaste();
        shot(scene, "5");
        QVERIFY(paste);
        QCOMPARE(paste->text, recordLink);
        QVERIFY(scene.clipboardBecomes(record));
    }
};

UNPRIVILEGED_TEST_MAIN(TestE2eGnome)
#include "test_e2e_gnome.moc"
