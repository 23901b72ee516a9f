#include "e2e/Scene.h"
#include "support/Unprivileged.h"

namespace {

DesktopOptions withoutGrants() {
    return {.notifications = true, .keyring = true, .kind = DesktopKind::KWin};
}

/// Lets the program press keys as ./run does for what it has built; what it said.
QString grantAsRun(const Scene &scene) {
    QProcess shell;
    shell.setProcessEnvironment(scene.desktop.environment());
    shell.setProcessChannelMode(QProcess::MergedChannels);
    shell.start("bash", {"-c", "set -eu; . \"$0\"; grant_on_kwin \"$1\"", KWIN_GRANT_SCRIPT,
                         BRINDLE_PROGRAM});
    shell.waitForFinished();
    return QString::fromUtf8(shell.readAll()).trimmed();
}

} // namespace

class TestE2eKde : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void buildFolderIsGrantedKeysInARunningSession() {
        Scene scene(withoutGrants());
        scene.start();
        QVERIFY2(scene.isUp() && scene.openTarget(), qPrintable(scene.desktop.problem()));
        const ClipboardOwner owner(scene.desktop, scene.copied(record));
        scene.press();
        QVERIFY(scene.clipboardBecomes(recordLink)); // and there it stays, for the user to paste
        QVERIFY(scene.shown.waitForAccepted(1));
        QCOMPARE(scene.target->pasteCount(), 0);

        scene.brindle.reset();
        const QString entry = scene.desktop.environment().value("XDG_DATA_HOME") +
                              "/applications/org.ostrowind.brindle.build.desktop";
        QCOMPARE(grantAsRun(scene),
                 "Wrote " + entry + ", by which KWin lets this build press the paste keys.");
        QCOMPARE(grantAsRun(scene), QString());
        scene.start();
        QVERIFY(scene.isUp());
        const ClipboardOwner again(scene.desktop, scene.copied(record));
        scene.press();
        const auto paste = scene.target->waitForPaste();
        QVERIFY(paste);
        QCOMPARE(paste->text, recordLink);
        QVERIFY(scene.clipboardBecomes(record));
    }

    void hotkeyIsFreeWhenTheProgramHasEnded_data() {
        QTest::addColumn<bool>("killed");
        QTest::newRow("quit") << false;
        QTest::newRow("killed, started again and quit") << true;
    }
    void hotkeyIsFreeWhenTheProgramHasEnded() {
        QFETCH(bool, killed);
        Scene scene(withoutGrants());
        scene.start();
        QVERIFY2(scene.isUp() && scene.openTarget(), qPrintable(scene.desktop.problem()));
        const auto reachesTheWindow = [&] {
            scene.target->forgetEvents();
            scene.press();
            scene.keys.tap(keyCode(KEY_A)); // comes after it
            waitFor([&] { return scene.target->typed() == "a"; });
            const QList<QJsonObject> keys = scene.target->events("key");
            return std::any_of(keys.begin(), keys.end(), [](const QJsonObject &key) {
                return key["type"] == "press" && key["code"].toInt() == keyCode(KEY_V);
            });
        };
        QVERIFY(!reachesTheWindow());
        if (killed) {
            scene.brindle->kill();
            QVERIFY(waitFor([&] { return scene.brindle->state() == QProcess::NotRunning; }));
            scene.start();
            QVERIFY(scene.isUp());
            QVERIFY(!reachesTheWindow());
        }
        scene.brindle->terminate();
        QVERIFY(scene.hasEnded());
        QVERIFY(reachesTheWindow());
    }
};

UNPRIVILEGED_TEST_MAIN(TestE2eKde)
#include "test_e2e_kde.moc"
