#include "e2e/Scene.h"

namespace {

struct Report {
    int status = -1;
    QStringList lines;

    /// What stands behind the name of the capability, and the advice below it.
    QString of(const QString &capability) const {
        for (qsizetype i = 1; i < lines.size(); ++i) {
            const QString mark = lines[i].left(7).trimmed();
            if (lines[i].mid(9, 14).trimmed() != capability)
                continue;
            const QString advice = lines.value(i + 1).trimmed();
            return mark + ": " + lines[i].mid(25) +
                   (advice.startsWith("-> ") ? ' ' + advice : QString());
        }
        return "(not examined)";
    }
};

Report examine(const QProcessEnvironment &environment, const QStringList &options = {}) {
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(BRINDLE_PROGRAM, QStringList("doctor") + options);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit)
        return {-1, {process.errorString()}};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()).split('\n')};
}

const QString noTray =
    "note: nothing shows status icons -> Brindle is reached by its hotkey, the actions of its "
    "desktop entry and \"brindle preferences\".";
const QString noKeyring =
    "note: none: API tokens can't be kept -> Install gnome-keyring, KWallet or "
    "KeePassXC, switch its Secret Service on and log in again.";

} // namespace

class TestE2eDoctor : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nowhere() {
        QProcessEnvironment environment;
        environment.insert("HOME", QDir::tempPath() + "/none");
        const Report report = examine(environment);
        QCOMPARE(report.status, 1);
        QVERIFY(report.lines[0].endsWith("no Brindle is running"));
        QCOMPARE(report.of("session"),
                 "note: XDG_RUNTIME_DIR names no folder: this is no usual session");
        QCOMPARE(report.of("clipboard"),
                 "PROBLEM: unavailable; not X11 selection (no X server answers) -> An X11 session, "
                 "sway, Plasma, labwc or GNOME with XWayland have one that can be used.");
        QCOMPARE(report.of("hotkey"),
                 "PROBLEM: unavailable; not X11 grabs (no X server answers) -> Let a keyboard "
                 "shortcut of the desktop run \"brindle paste\".");
        QCOMPARE(
            report.of("paste keys"),
            "PROBLEM: unavailable; not XTEST (no X server answers) -> Links are copied for you "
            "to paste with Ctrl+V.");
        QCOMPARE(report.of("tray"), noTray);
        QCOMPARE(report.of("notifications"), "note: nobody shows them: no session bus -> Messages "
                                             "are in the activity log too: \"brindle log\".");
        QCOMPARE(report.of("keyring"), noKeyring);
        QCOMPARE(report.lines[report.lines.size() - 2],
                 "Links can't be pasted by the hotkey before the problem is solved.");
    }

    void aloneAndAsTheRunningOne() {
        Scene scene({.notifications = true, .keyring = true});
        const ClipboardOwner owner(scene.desktop, scene.copied(record));
        const Report alone = examine(scene.desktop.environment());
        QCOMPARE(alone.status, 0);
        QCOMPARE(alone.of("session"), "ok: your own");
        QCOMPARE(alone.of("clipboard"), "ok: X11 selection; read, it offers text in 2 form(s)");
        QCOMPARE(alone.of("hotkey"), "ok: X11 grabs; Ctrl+Alt+Super+V can be had");
        QCOMPARE(alone.of("paste keys"), "ok: XTEST");
        QCOMPARE(alone.of("secure input"), "ok: no password is being asked for now");
        QVERIFY2(alone.of("notifications").startsWith("ok: "),
                 qPrintable(alone.of("notifications")));
        QCOMPARE(alone.of("keyring"), "ok: a secret was kept, read and removed");
        QCOMPARE(alone.of("login item"), "ok: Brindle does not start at login");
        QCOMPARE(alone.of("settings"), "ok: they can be written");
        QCOMPARE(alone.of("your site"), "(not examined)");
        QCOMPARE(alone.lines[alone.lines.size() - 2], "Links can be pasted.");
        QCOMPARE(scene.clipboard(), record);

        scene.start();
        QVERIFY(scene.isUp());
        const Report running = examine(scene.desktop.environment(), {"--network"});
        QCOMPARE(running.status, 0);
        QVERIFY(running.lines[0].endsWith("as the running Brindle finds it"));
        QCOMPARE(running.of("hotkey"), "ok: X11 grabs; Ctrl+Alt+Super+V is in force");
        QVERIFY(running.of("gateway").startsWith("note: it can't be reached: "));
        QCOMPARE(running.of("your site"), "note: no address is set");
        QVERIFY(!running.lines.join('\n').contains("h.example"));
        QVERIFY(!running.lines.join('\n').contains(scene.desktop.home()));
        QCOMPARE(scene.clipboard(), record);
    }

    /// Without a bus the running one is another program like any other.
    void hotkeyThatIsTaken() {
        Scene scene;
        scene.start();
        QVERIFY(scene.isUp());
        QProcessEnvironment environment = scene.desktop.environment();
        environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
        const Report report = examine(environment);
        QCOMPARE(report.status, 1);
        QCOMPARE(
            report.of("hotkey"),
            "PROBLEM: X11 grabs; Ctrl+Alt+Super+V is taken by another program -> Choose another "
            "combination in the preferences, General.");
    }

    void whatIsLockedOrReadOnly() {
        Scene scene;
        QVERIFY(lockKeyring(scene.desktop));
        QProcessEnvironment environment = scene.desktop.environment();
        environment.insert("XDG_CONFIG_HOME", "/proc/none"); // root may write everywhere else
        const Report report = examine(environment);
        QCOMPARE(report.status, 0);
        QCOMPARE(report.of("keyring"),
                 "note: locked: it asks for its password when a title is fetched");
        QCOMPARE(report.of("settings"),
                 "note: they can't be written: what you choose lasts until Brindle quits");
    }
};

QTEST_GUILESS_MAIN(TestE2eDoctor)
#include "test_e2e_doctor.moc"
