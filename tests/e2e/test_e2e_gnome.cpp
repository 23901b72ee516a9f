#include "e2e/Consent.h"
#include "support/Unprivileged.h"

#include <QElapsedTimer>

namespace {

/// The shortcuts in the desktop's settings, as its own tool tells them.
QString shortcuts(const Scene &scene) {
    QProcess tool;
    tool.setProcessEnvironment(scene.desktop.environment());
    tool.start("gsettings",
               {"get", "org.gnome.settings-daemon.plugins.media-keys", "custom-keybindings"});
    tool.waitForFinished();
    return QString::fromUtf8(tool.readAll()).trimmed();
}

} // namespace

class TestE2eGnome : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void copiesUntilTheUserAllowsPasting() {
        Scene scene({.notifications = true,
                     .keyring = true,
                     .portal = true,
                     .accessibility = true,
                     .kind = DesktopKind::Gnome});
        scene.start();
        QVERIFY2(scene.isUp(), qPrintable(scene.desktop.problem()));
        Consent consent(scene);
        // Where the desktop remembers what it is told, an alert leads to its question.
        const bool hasAlert = gnomeGivesHotkeys();
        if (hasAlert)
            QVERIFY(consent.acceptHotkeys());
        for (const bool wasRefused : {false, true}) {
            QVERIFY(scene.openTarget());
            const ClipboardOwner owner(scene.desktop, scene.copied(record));
            scene.press();
            const bool isAlert = hasAlert && !wasRefused;
            if (!wasRefused)
                QVERIFY(isAlert ? consent.answerAlert(false) : consent.answer(false));
            // The link is there for the user to paste.
            QVERIFY(scene.clipboardBecomes(isAlert ? record : recordLink));
            QVERIFY(scene.shown.waitForAccepted((wasRefused ? 1 : 0) + (hasAlert ? 0 : 1)));
            QCOMPARE(scene.target->pasteCount(), 0);
            QTest::qWait(1000); // a press that comes sooner could not be told from a repeat
        }
        QVERIFY(consent.answer(true));
        QVERIFY(scene.openTarget());
        const ClipboardOwner owner(scene.desktop, scene.copied(record));
        scene.press();
        const auto paste = scene.target->waitForPaste();
        QVERIFY(paste);
        QCOMPARE(paste->text, recordLink);
        QVERIFY(scene.clipboardBecomes(record));
    }

    void pastesOnceWhenTheKeysAreUp() {
        struct Row {
            int held;    ///< milliseconds
            int between; ///< the fingers that go up, the letter's first
            bool pastes = true;
        };
        Scene scene(
            {.keyring = true, .portal = true, .accessibility = true, .kind = DesktopKind::Gnome});
        scene.start();
        QVERIFY2(scene.isUp() && Consent(scene).allowAll() && scene.openTarget(),
                 qPrintable(scene.desktop.problem()));
        for (const auto &[held, between, pastes] :
             {Row{0, 0}, Row{0, 50}, Row{300, 0}, Row{600, 150}, Row{1000, 0}, Row{1800, 0},
              Row{2600, 0, false}}) {
            const QByteArray row = QByteArray::number(held) + " ms, " + QByteArray::number(between);
            const ClipboardOwner owner(scene.desktop, scene.copied(record));
            scene.target->forgetEvents();
            for (const int key : Scene::hotkey())
                scene.keys.press(key);
            QTest::qWait(held);
            while (!scene.keys.held().isEmpty()) {
                scene.keys.release(scene.keys.held().constLast());
                QTest::qWait(between);
            }
            QElapsedTimer timer;
            timer.start();
            QCOMPARE(scene.target->waitForPaste(0, pastes ? 15000 : 500).has_value(), pastes);
            qInfo("%s: %lld ms", row.constData(), static_cast<long long>(timer.elapsed()));
            QVERIFY2(scene.clipboardBecomes(record), row);
            QTest::qWait(1000); // a press that comes sooner could not be told from a repeat
            QCOMPARE(scene.target->pasteCount(), pastes ? 1 : 0);
            QCOMPARE(scene.target->typed(), QString());
        }
    }

    void shortcutGoesWithTheProgram() {
        Scene scene({.keyring = true, .kind = DesktopKind::Gnome});
        const QString none = "@as []";
        QCOMPARE(shortcuts(scene), none);
        scene.start();
        QVERIFY2(scene.isUp(), qPrintable(scene.desktop.problem()));
        const QString ours = "['/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/"
                             "brindle-1/']";
        QVERIFY(waitFor([&] { return shortcuts(scene) == ours; }));
        scene.brindle->kill();
        QVERIFY(waitFor([&] { return scene.brindle->state() == QProcess::NotRunning; }));
        QCOMPARE(shortcuts(scene), ours);
        scene.start();
        QVERIFY(scene.isUp() && scene.openTarget());
        QCOMPARE(shortcuts(scene), ours); // taken over
        const ClipboardOwner owner(scene.desktop, scene.copied(record));
        scene.press();
        QVERIFY(scene.clipboardBecomes(recordLink));
        scene.brindle->terminate();
        QVERIFY(scene.hasEnded());
        QCOMPARE(shortcuts(scene), none);
    }
};

UNPRIVILEGED_TEST_MAIN(TestE2eGnome)
#include "test_e2e_gnome.moc"
