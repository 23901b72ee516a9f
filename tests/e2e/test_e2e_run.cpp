#include "e2e/Scene.h"

#include <QElapsedTimer>

class TestE2eRun : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pastesTheLinkAndGivesTheClipboardBack() {
        const QList<std::tuple<QString, QString, QString>> cases{
            {"richLink", record + " (" + recordLink + ")",
             "<a href=\"" + recordLink + "\">" + record + "</a>"},
            {"markdown", "[" + record + "](" + recordLink + ")", {}},
        };
        for (const auto &[format, text, html] : cases) {
            Scene scene;
            scene.start({{"accountPasteFormat", format}});
            QVERIFY(scene.isUp() && scene.openTarget());
            const ClipboardOwner owner(scene.desktop, scene.copied(record.toUpper()));
            scene.press();
            scene.press();
            const auto paste = scene.target->waitForPaste();
            QVERIFY(paste);
            scene.press();
            QCOMPARE(paste->via, "Ctrl+V");
            QCOMPARE(paste->text, text);
            QCOMPARE(paste->html, html);
            QCOMPARE(paste->rtf.contains("HYPERLINK \"" + recordLink.toUtf8()), !html.isEmpty());
            QVERIFY(scene.clipboardBecomes(record.toUpper()));
            QCOMPARE(scene.clipboard("text/html"), "<p>" + record.toUpper() + "</p>");
            QCOMPARE(scene.target->pasteCount(), 1);
            QCOMPARE(scene.target->typed(), QString());
            QCOMPARE(heldKeys(scene.desktop.display()), QList<int>());
            // The flag falls in the same turn as the restore, which is over once the text can be
            // read.
            scene.press();
            QVERIFY(scene.target->waitForPaste(1));
        }
    }

    void busyTargetGetsTheLinkAndANewCopyStays() {
        Scene scene;
        scene.start();
        QVERIFY(scene.isUp() && scene.openTarget());
        {
            const ClipboardOwner owner(scene.desktop, scene.copied(record));
            scene.target->send("busy 1400");
            QVERIFY(!scene.target->waitForEvent("busy").isEmpty());
            scene.press();
            const auto paste = scene.target->waitForPaste();
            QVERIFY(paste);
            QCOMPARE(paste->text, recordLink);
            QVERIFY(scene.clipboardBecomes(record));
        }
        const ClipboardOwner owner(scene.desktop, scene.copied(record));
        scene.press();
        QVERIFY(scene.target->waitForPaste(1));
        const ClipboardOwner newer(scene.desktop, scene.copied("something newer"));
        QVERIFY(newer.ownsClipboard());
        QTest::qWait(2500); // longer than any restore may take
        QVERIFY(newer.ownsClipboard());
        QCOMPARE(scene.clipboard(), "something newer");
    }

    void secureInputLeavesTheLinkForTheUser() {
        Scene scene({.notifications = true, .keyring = true, .accessibility = true});
        scene.start();
        QVERIFY(scene.isUp() && scene.openTarget());
        int times = 0;
        for (const char *holder : {"grab", "password"}) {
            const ClipboardOwner owner(scene.desktop, scene.copied(record));
            QVERIFY(scene.target->command(holder + QString(" on")));
            QTest::qWait(500); // the application tells the accessibility bus in its own time
            // By the bus: no hotkey reaches anybody while the keyboard is held.
            QVERIFY(scene.brindle->activate("enrich"));
            QVERIFY(scene.shown.waitForAccepted(++times));
            const QString told = scene.shown.notifications().constLast().body;
            QVERIFY(told.startsWith("Couldn't paste: secure keyboard entry is active"));
            QVERIFY(told.endsWith("paste it with Ctrl+V."));
            QTest::qWait(1000);
            QCOMPARE(scene.clipboard(), recordLink);
            QCOMPARE(scene.target->pasteCount(), 0);
            QVERIFY(scene.target->command(holder + QString(" off")));
        }
        QTest::qWait(500);
        QVERIFY(scene.brindle->activate("enrich"));
        QVERIFY(scene.target->waitForPaste());
    }

    void heldHotkeyPastesOnceTheFingersAreUp() {
        Scene scene({.physicalKeyboard = true, .keyring = true});
        scene.start();
        QVERIFY(scene.isUp() && scene.openTarget());
        const ClipboardOwner owner(scene.desktop, scene.copied(record));
        // After a second of holding, the keys are released for the user.
        for (const auto &[heldFor, pasteNotBefore] :
             {std::pair(400, 400), std::pair(3000, 900), std::pair(400, 400)}) {
            scene.target->forgetEvents();
            QElapsedTimer held;
            held.start();
            for (const int key : Scene::hotkey())
                QVERIFY(scene.keys.press(key));
            qint64 pastedAfter = heldFor;
            QVERIFY(waitFor([&] {
                if (scene.target->pasteCount() > 0)
                    pastedAfter = std::min(pastedAfter, held.elapsed());
                return held.elapsed() >= heldFor;
            }));
            while (!scene.keys.held().isEmpty())
                QVERIFY(scene.keys.release(scene.keys.held().constLast()));
            const auto paste = scene.target->waitForPaste();
            QVERIFY(paste);
            QCOMPARE(paste->text, recordLink);
            QVERIFY2(pastedAfter >= pasteNotBefore, qPrintable(QString::number(pastedAfter)));
            QVERIFY(scene.clipboardBecomes(record));
            QCOMPARE(scene.target->pasteCount(), 1);
            QCOMPARE(scene.target->typed(), QString());
            QVERIFY(waitFor([&] { return heldKeys(scene.desktop.display()).isEmpty(); }));
            QTest::qWait(600); // the flag of the paste falls
        }
    }

    void terminalOnAnotherLayoutGetsItsOwnPasteKeys() {
        Scene scene;
        scene.start();
        QVERIFY(scene.isUp() && scene.openTarget({"--wm-class", "gnome-terminal-server"}));
        QProcess setxkbmap;
        setxkbmap.setProcessEnvironment(scene.desktop.environment());
        setxkbmap.start("setxkbmap", {"us", "-variant", "dvorak"});
        QVERIFY(setxkbmap.waitForFinished() && setxkbmap.exitCode() == 0);
        const ClipboardOwner owner(scene.desktop, scene.copied(record));
        scene.press(); // the same place on the keyboard
        const auto paste = scene.target->waitForPaste();
        QVERIFY(paste);
        QCOMPARE(paste->via, "Ctrl+Shift+V");
        QCOMPARE(paste->text, recordLink);
        QCOMPARE(scene.target->typed(), QString());
    }
};

QTEST_GUILESS_MAIN(TestE2eRun)
#include "test_e2e_run.moc"
