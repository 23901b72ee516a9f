#include "e2e/Consent.h"
#include "e2e/Site.h"
#include "stage/GnomeCompositor.h"
#include "support/Unprivileged.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

namespace {

/// KWin grants nothing to a program that it can't look at, as in a folder of root's alone.
QList<std::pair<QByteArray, DesktopKind>> desktops() {
    QList<std::pair<QByteArray, DesktopKind>> all{{"sway", DesktopKind::Sway}};
    if (!QStandardPaths::findExecutable("labwc").isEmpty()) // not in every Debian
        all.append({"labwc", DesktopKind::Labwc});
    if (QFileInfo(BRINDLE_PROGRAM).isExecutable())
        all.append({"KWin", DesktopKind::KWin});
    else
        qWarning("KWin is left out: %s lies in a folder of root's alone", BRINDLE_PROGRAM);
    if (const QString missing = GnomeCompositor::missing(); missing.isEmpty())
        all.append({"GNOME", DesktopKind::Gnome});
    else
        qWarning("GNOME is left out: %s", qPrintable(missing));
    return all;
}
const QList<std::pair<QByteArray, TargetKind>> targets{{"Qt", TargetKind::Qt},
                                                       {"GTK 3", TargetKind::Gtk},
                                                       {"foot", TargetKind::Foot},
                                                       {"XWayland", TargetKind::XWayland}};

/// With what the installed desktop entry grants.
DesktopOptions optionsFor(DesktopKind kind) {
    const QSettings entry(BRINDLE_DESKTOP_ENTRY, QSettings::IniFormat);
    const QStringList globals =
        entry.value("Desktop Entry/X-KDE-Wayland-Interfaces").toStringList();
    const bool isGnome = kind == DesktopKind::Gnome;
    return {.keyring = true,
            .portal = isGnome,
            .accessibility = isGnome,
            .kind = kind,
            .grants = {{BRINDLE_PROGRAM, globals.join(',')}}};
}

/// Up, and allowed to press keys.
bool isReady(Scene &scene) {
    return scene.isUp() &&
           (scene.desktop.kind() != DesktopKind::Gnome || Consent(scene).allowAll());
}

/// Processor time of a process, in hundredths of a second.
qint64 cpuTime(qint64 process) {
    QFile stat(QString("/proc/%1/stat").arg(process));
    if (!stat.open(QIODevice::ReadOnly))
        return -1;
    const QByteArrayList fields = stat.readAll().split(')').constLast().split(' ');
    return fields[12].toLongLong() + fields[13].toLongLong();
}

} // namespace

class TestE2eWayland : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pastesEveryFormat_data() {
        QTest::addColumn<DesktopKind>("kind");
        QTest::addColumn<TargetKind>("target");
        for (const auto &[desktopName, kind] : desktops()) {
            for (const auto &[targetName, target] : targets) {
                // GNOME does not tell that it is one.
                if (kind == DesktopKind::Gnome && target == TargetKind::Foot)
                    continue;
                QTest::newRow(desktopName + ", " + targetName) << kind << target;
            }
        }
    }
    void pastesEveryFormat() {
        QFETCH(DesktopKind, kind);
        QFETCH(TargetKind, target);
        Scene scene(optionsFor(kind));
        const QString full = record + " (" + recordLink + ")";
        const QList<std::tuple<QString, QString, QString>> formats{
            {"richLink", full, "<a href=\"" + recordLink + "\">" + record + "</a>"},
            {"markdown", "[" + record + "](" + recordLink + ")", {}},
            {"plainText", full, {}},
            {"urlOnly", recordLink, {}}};
        for (const auto &[format, text, html] : formats) {
            scene.brindle.reset();
            scene.start({{"accountPasteFormat", format}});
            QVERIFY2(isReady(scene), qPrintable(scene.desktop.problem()));
            QVERIFY(scene.openTarget({}, target));
            const ClipboardOwner owner(scene.desktop, scene.copied(record));
            scene.press();
            const auto paste = scene.target->waitForPaste();
            QVERIFY2(paste, qPrintable(format));
            QCOMPARE(paste->text, text);
            QCOMPARE(paste->html, target == TargetKind::Foot ? QString() : html);
            QVERIFY2(scene.clipboardBecomes(record), qPrintable(format));
            QCOMPARE(scene.clipboard("text/html"), "<p>" + record + "</p>");
            QCOMPARE(scene.target->pasteCount(), 1);
            QCOMPARE(scene.target->typed(), QString());
            scene.target.reset();
        }
    }

    void heldHotkeyPastesOnce_data() { addDesktops(); }
    void heldHotkeyPastesOnce() {
        QFETCH(DesktopKind, kind);
        Scene scene(optionsFor(kind));
        scene.start();
        QVERIFY2(isReady(scene) && scene.openTarget(), qPrintable(scene.desktop.problem()));
        const ClipboardOwner owner(scene.desktop, scene.copied(record));
        for (const int key : Scene::hotkey())
            QVERIFY(scene.keys.press(key));
        QTest::qWait(1000); // longer than it takes a key to repeat
        while (!scene.keys.held().isEmpty())
            QVERIFY(scene.keys.release(scene.keys.held().constLast()));
        QVERIFY(scene.target->waitForPaste());
        QVERIFY(scene.clipboardBecomes(record));
        QCOMPARE(scene.target->pasteCount(), 1);
        QCOMPARE(scene.target->typed(), QString());
        QVERIFY(scene.keys.tap(keyCode(KEY_A)));
        QVERIFY(waitFor([&] { return scene.target->typed() == "a"; })); // nothing is held
    }

    void givesBackWhatWasThereAndNothingOverANewCopy_data() { addDesktops(); }
    void givesBackWhatWasThereAndNothingOverANewCopy() {
        QFETCH(DesktopKind, kind);
        Scene scene(optionsFor(kind));
        scene.start();
        QVERIFY2(isReady(scene) && scene.openTarget(), qPrintable(scene.desktop.problem()));
        const QByteArray html = "<p>" + QByteArray("é<&\n 0123456789").repeated(655360) + "</p>";
        {
            const ClipboardOwner owner(scene.desktop, {{"text/html", html},
                                                       {scene.textName(), record.toUtf8()},
                                                       {"application/x-unknown", html}});
            scene.target->send("busy 1400");
            QVERIFY(!scene.target->waitForEvent("busy").isEmpty());
            scene.press();
            const auto paste = scene.target->waitForPaste();
            QVERIFY(paste);
            QCOMPARE(paste->text, recordLink);
            QVERIFY(scene.clipboardBecomes(record));
            QVERIFY(scene.clipboardData("text/html") == html);
            for (const QJsonObject &request : owner.events("request"))
                QVERIFY(request["target"] != "application/x-unknown"); // only texts are kept
        }
        const ClipboardOwner owner(scene.desktop, scene.copied(record));
        scene.press();
        QVERIFY(scene.target->waitForPaste(1));
        const ClipboardOwner newer(scene.desktop, scene.copied("something newer"));
        QTest::qWait(2500); // longer than any restore may take
        QVERIFY(newer.ownsClipboard());
        QCOMPARE(scene.clipboard(), "something newer");
    }

    void imageAloneStays_data() { addDesktops(); }
    void imageAloneStays() {
        QFETCH(DesktopKind, kind);
        Scene scene(optionsFor(kind));
        scene.start();
        QVERIFY2(isReady(scene) && scene.openTarget(), qPrintable(scene.desktop.problem()));
        const ClipboardOwner image(scene.desktop, {{"image/png", "\x89PNG"}});
        scene.press();
        if (kind == DesktopKind::Gnome)
            QTest::qWait(800); // presses closer together count as one there
        const ClipboardOwner text(scene.desktop, scene.copied(record));
        scene.press(); // the run before has ended when this one pastes
        QVERIFY(scene.target->waitForPaste());
        QCOMPARE(scene.target->pasteCount(), 1);
        // GNOME itself fetches one flavour of whatever is copied.
        QCOMPARE(image.events("served").size(), kind == DesktopKind::Gnome ? 1 : 0);
    }

    void worksUnderACyrillicLayout_data() { addDesktops(); }
    void worksUnderACyrillicLayout() {
        QFETCH(DesktopKind, kind);
        if (kind == DesktopKind::Labwc)
            QSKIP("looks for its bindings by symbol, and there is no Latin one");
        DesktopOptions options = optionsFor(kind);
        options.layouts = kind == DesktopKind::KWin ? "ru,us" : "ru";
        Scene scene(options);
        scene.start();
        QVERIFY2(isReady(scene) && scene.openTarget(), qPrintable(scene.desktop.problem()));
        const ClipboardOwner owner(scene.desktop, scene.copied(record));
        QVERIFY(scene.keys.tap(keyCode(KEY_A)));
        QVERIFY(waitFor([&] { return scene.target->typed() == u"ф"; }));
        scene.press();
        const auto paste = scene.target->waitForPaste();
        QVERIFY(paste);
        QCOMPARE(paste->text, recordLink);
        QCOMPARE(scene.target->typed(), u"ф");
    }

    void hotkeySurvivesAReload() {
        Scene scene(optionsFor(DesktopKind::Sway));
        scene.start();
        QVERIFY2(isReady(scene) && scene.openTarget(), qPrintable(scene.desktop.problem()));
        const ClipboardOwner owner(scene.desktop, scene.copied(record));
        QProcess swaymsg;
        swaymsg.setProcessEnvironment(scene.desktop.environment());
        swaymsg.start("swaymsg", {"reload"});
        QVERIFY(swaymsg.waitForFinished() && swaymsg.exitCode() == 0);
        // It is bound again a moment later; a press before that is the window's.
        QVERIFY(waitFor([&] {
            scene.press();
            return scene.target->waitForPaste(0, 500).has_value();
        }));
    }

    void endsOrIdlesWhenTheCompositorIsGone_data() { addDesktops(); }
    void endsOrIdlesWhenTheCompositorIsGone() {
        QFETCH(DesktopKind, kind);
        Scene scene(optionsFor(kind));
        scene.start();
        QVERIFY2(scene.isUp(), qPrintable(scene.desktop.problem()));
        const qint64 brindle = scene.brindle->processId();
        for (const qint64 id : scene.desktop.processes()) {
            const QString program = QFile::symLinkTarget(QString("/proc/%1/exe").arg(id));
            if (program.endsWith("/sway") || program.endsWith("/labwc") ||
                program.endsWith("/kwin_wayland") || program.endsWith("/gnome-shell"))
                kill(static_cast<pid_t>(id), SIGKILL);
        }
        if (waitFor([&] { return scene.brindle->state() == QProcess::NotRunning; }, 3000)) {
            // The status may be 1: the toolkit ends a program whose compositor goes by itself.
            QCOMPARE(scene.brindle->exitStatus(), QProcess::NormalExit);
            return;
        }
        const qint64 before = cpuTime(brindle);
        QTest::qWait(1000);
        QVERIFY2(cpuTime(brindle) - before < 10, "it spins");
        QVERIFY(scene.brindle->isUp());
    }

    void titlesAreFetched_data() {
        QTest::addColumn<DesktopKind>("kind");
        for (const auto &[name, kind] : desktops()) {
            // GNOME's shortcut would run the program of the stage, which takes other arguments.
            if (kind != DesktopKind::Gnome)
                QTest::newRow(name.constData()) << kind;
        }
    }
    void titlesAreFetched() {
        QFETCH(DesktopKind, kind);
        DesktopOptions options = optionsFor(kind);
        options.grants = {{BRINDLE_ON_STAGE_PROGRAM, options.grants.first()}};
        Site scene({{"pasteFormat", "markdown"}, {"displayTemplate", "{key} {type}"}}, options);
        QVERIFY2(scene.isReady(), qPrintable(scene.desktop.problem()));
        const ClipboardOwner owner(scene.desktop, scene.copied(issue));
        scene.press();
        const auto paste = scene.target->waitForPaste();
        QVERIFY(paste);
        QCOMPARE(paste->text, "[ABC-1 Bug](" + issue + ")");
        QVERIFY(scene.clipboardBecomes(issue));
    }

private:
    static void addDesktops() {
        QTest::addColumn<DesktopKind>("kind");
        for (const auto &[name, kind] : desktops())
            QTest::newRow(name.constData()) << kind;
    }
};

UNPRIVILEGED_TEST_MAIN(TestE2eWayland)
#include "test_e2e_wayland.moc"
