#include "e2e/Scene.h"

namespace {

struct Outcome {
    int status = -1;
    QString output;
    QString errors;
};

/// No display, no bus and no home.
QProcessEnvironment nowhere() {
    QProcessEnvironment environment;
    environment.insert("LANG", "C.UTF-8");
    return environment;
}

/// Runs the program to its end.
Outcome run(const QStringList &arguments, const QProcessEnvironment &environment = nowhere()) {
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(BRINDLE_PROGRAM, arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit)
        return {-1, {}, process.errorString()};
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

const QString usage = "Usage: brindle [paste|copy|preferences|log|quit|doctor [--network]|"
                      "--help|--version]\n";
const QString silent = "brindle: the running Brindle does not answer\n";

} // namespace

class TestE2eCommandLine : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void answersWithoutADesktop_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("output");
        QTest::addColumn<QString>("errors");
        QTest::newRow("version") << QStringList("--version") << 0 << "brindle " BRINDLE_VERSION "\n"
                                 << "";
        QTest::newRow("unknown word") << QStringList("past") << 2 << "" << usage;
        QTest::newRow("unknown option") << QStringList("--paste") << 2 << "" << usage;
        QTest::newRow("empty word") << QStringList("") << 2 << "" << usage;
        QTest::newRow("two words") << QStringList{"copy", "paste"} << 2 << "" << usage;
        QTest::newRow("doctor, two words") << QStringList{"doctor", "paste"} << 2 << "" << usage;
        QTest::newRow("start") << QStringList() << 1 << ""
                               << "brindle: no display\n";
    }

    void answersWithoutADesktop() {
        QFETCH(QStringList, arguments);
        const Outcome outcome = run(arguments);
        QTEST(outcome.status, "status");
        QTEST(outcome.output, "output");
        QTEST(outcome.errors, "errors");
    }

    void helpNamesEveryWord() {
        const Outcome help = run({"--help"});
        QCOMPARE(help.status, 0);
        QVERIFY(help.output.startsWith("Usage: brindle [COMMAND]\n"));
        for (const char *word :
             {"paste", "copy", "preferences", "log", "quit", "doctor", "--version"})
            QVERIFY2(help.output.contains(QString("\n  %1 ").arg(word)), word);
    }

    void toolkitIsNotLoadedForAWord() {
        QProcessEnvironment environment = nowhere();
        environment.insert("LD_TRACE_LOADED_OBJECTS", "1"); // what the loader would load
        const Outcome loaded = run({"paste"}, environment);
        QVERIFY(loaded.output.contains("libgio"));
        QVERIFY2(!loaded.output.contains("Qt"), qPrintable(loaded.output));
    }

    void wordsReachTheRunningOne() {
        Scene scene;
        const QProcessEnvironment environment = scene.desktop.environment();
        scene.start();
        QVERIFY(scene.isUp());
        QVERIFY(scene.openTarget());
        const ClipboardOwner owner(scene.desktop, scene.copied(record));
        QCOMPARE(run({"paste"}, environment).status, 0);
        const auto paste = scene.target->waitForPaste();
        QVERIFY(paste && paste->text == recordLink);
        QVERIFY(scene.clipboardBecomes(record));
        QCOMPARE(run({"copy"}, environment).status, 0);
        QVERIFY(waitFor([&] { return scene.clipboard() == recordLink; }));
        QCOMPARE(scene.target->pasteCount(), 1);
        QCOMPARE(run({"log"}, environment).status, 0);
        QVERIFY(scene.shows("Brindle Logs"));
        QCOMPARE(run({"preferences"}, environment).status, 0);
        QVERIFY(scene.shows("Settings"));
        QCOMPARE(run({"quit"}, environment).status, 0);
        QVERIFY(scene.hasEnded());
        const Outcome again = run({"quit"}, environment);
        QCOMPARE(again.status, 1);
        QCOMPARE(again.errors, "brindle: not running\n");
    }

    void pasteStartsItWhereNoneRuns() {
        Scene scene;
        QVERIFY(scene.openTarget());
        const ClipboardOwner owner(scene.desktop, scene.copied(record));
        scene.start({}, BRINDLE_PROGRAM, {"paste"});
        QVERIFY(scene.target->waitForPaste());
        QVERIFY(scene.clipboardBecomes(record));
        // What was called has ended, and what it started has not.
        QVERIFY(scene.hasEnded());
        QCOMPARE(scene.brindle->exitCode(), 0);
        QVERIFY(scene.brindle->isUp());
        scene.press();
        QVERIFY(scene.target->waitForPaste(1));
        QCOMPARE(run({"quit"}, scene.desktop.environment()).status, 0);
        QVERIFY(waitFor([&] { return !scene.brindle->activate("none"); }));
    }

    void whatCannotBeDoneIsSaid() {
        Scene scene;
        QProcessEnvironment environment = scene.desktop.environment();
        scene.start();
        QVERIFY(scene.isUp());
        const auto running = static_cast<pid_t>(scene.brindle->processId());
        QCOMPARE(kill(running, SIGSTOP), 0);
        for (const QStringList &words : {QStringList("paste"), QStringList()}) {
            const Outcome hung = run(words, environment);
            QCOMPARE(hung.status, 1);
            QCOMPARE(hung.errors, silent);
        }
        QCOMPARE(kill(running, SIGCONT), 0);
        QVERIFY(scene.brindle->isUp());

        environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
        const Outcome busless = run({"paste"}, environment);
        QCOMPARE(busless.status, 1);
        QVERIFY2(busless.errors.startsWith("brindle: no session bus: "),
                 qPrintable(busless.errors));

        environment = scene.desktop.environment();
        scene.brindle.reset();
        environment.insert("DISPLAY", ":9999");
        const Outcome screenless = run({"copy"}, environment);
        QCOMPARE(screenless.status, 1);
        QCOMPARE(screenless.errors, "brindle: could not be started\n");
    }
};

QTEST_GUILESS_MAIN(TestE2eCommandLine)
#include "test_e2e_command_line.moc"
