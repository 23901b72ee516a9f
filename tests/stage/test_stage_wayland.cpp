#include "stage/Actors.h"
#include "stage/VirtualDesktop.h"
#include "stage/VirtualKeyboard.h"
#include "stage/WaylandClipboardReader.h"
#include "support/Unprivileged.h"

#include <QElapsedTimer>

namespace {

const QList<std::pair<QByteArray, DesktopKind>> desktops{
    {"sway", DesktopKind::Sway}, {"KWin", DesktopKind::KWin}, {"GNOME", DesktopKind::Gnome}};
const QList<std::pair<QByteArray, TargetKind>> targets{{"Qt", TargetKind::Qt},
                                                       {"GTK 3", TargetKind::Gtk},
                                                       {"foot", TargetKind::Foot},
                                                       {"XWayland", TargetKind::XWayland}};

void pasteKeys(VirtualKeyboard &keys, TargetKind kind) {
    if (kind == TargetKind::Foot)
        keys.chord({keyCode(KEY_LEFTCTRL), keyCode(KEY_LEFTSHIFT), keyCode(KEY_V)});
    else
        keys.chord({keyCode(KEY_LEFTCTRL), keyCode(KEY_V)});
}

} // namespace

/// That what the other tests stand on does what they take for granted.
class TestStageWayland : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void comesAndGoesWithoutATrace_data() { addDesktops(); }
    void comesAndGoesWithoutATrace() {
        QFETCH(DesktopKind, kind);
        QString home;
        {
            QElapsedTimer timer;
            timer.start();
            const VirtualDesktop desktop({.kind = kind});
            QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
            qInfo("up after %lld ms", static_cast<long long>(timer.elapsed()));
            home = desktop.home();
            QVERIFY(desktop.processes().size() >= 3); // the bus, the compositor, the keyboard
        }
        QCOMPARE(VirtualDesktop::processesAt(home), QList<qint64>());
    }

    void clipboardGoesRound_data() {
        QTest::addColumn<DesktopKind>("kind");
        for (const auto &[name, kind] : desktops) {
            if (hasDataControl(kind))
                QTest::newRow(name.constData()) << kind;
        }
    }
    void clipboardGoesRound() {
        QFETCH(DesktopKind, kind);
        const VirtualDesktop desktop({.bus = false, .kind = kind});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        WaylandClipboardReader reader(desktop.waylandSocket());
        const QByteArray large = QByteArray("0123456789abcdef").repeated(655360);
        const ClipboardOwner owner(desktop, {{"text/html", "<p>é</p>"},
                                             {"text/plain;charset=utf-8", "é"},
                                             {"application/x-unknown", large}});
        QVERIFY(owner.ownsClipboard());
        QCOMPARE(reader.targets(),
                 (QStringList{"text/html", "text/plain;charset=utf-8", "application/x-unknown"}));
        QCOMPARE(reader.data("text/html"), "<p>é</p>");
        QCOMPARE(reader.data("text/plain;charset=utf-8"), "é");
        QVERIFY(reader.data("application/x-unknown") == large);
        QVERIFY(!reader.data("image/png"));
        QCOMPARE(reader.problem(), "not on offer");

        const ClipboardOwner silent(desktop, {{"text/plain", "x"}}, {"--never-answer"});
        QVERIFY(waitFor([&] { return !owner.ownsClipboard(); }));
        WaylandClipboardReader hasty(desktop.waylandSocket(), 200);
        QVERIFY(!hasty.data("text/plain"));
        QCOMPARE(hasty.problem(), "stopped after 0 bytes");
        const ClipboardOwner many(desktop, {}, {"--many", "1000"});
        QVERIFY(waitFor([&] { return reader.targets() && reader.targets()->size() == 1000; }));
        QCOMPARE(reader.data("application/x-number-999"), "number");
    }

    void keysReachTheWindowInFront_data() {
        QTest::addColumn<DesktopKind>("kind");
        QTest::addColumn<TargetKind>("target");
        for (const auto &[desktopName, kind] : desktops) {
            for (const auto &[targetName, target] : targets)
                QTest::newRow(desktopName + ", " + targetName) << kind << target;
        }
    }
    void keysReachTheWindowInFront() {
        QFETCH(DesktopKind, kind);
        QFETCH(TargetKind, target);
        const VirtualDesktop desktop({.kind = kind});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        VirtualKeyboard keys(desktop);
        PasteTarget window(desktop, target);
        QVERIFY(waitFor([&] { return window.hasFocus(); }));
        // Now: KWin 6 tells XWayland only of what is copied while one of its windows is in front.
        const ClipboardOwner owner(
            desktop, {{"text/html", "<b>é</b>"}, {"text/plain;charset=utf-8", "é — 🐞"}});
        QVERIFY(owner.ownsClipboard());
        QVERIFY(keys.tap(keyCode(KEY_A)) && keys.tap(keyCode(KEY_B)) && keys.tap(keyCode(KEY_C)));
        QVERIFY2(waitFor([&] { return window.typed() == "abc"; }), qPrintable(window.typed()));
        pasteKeys(keys, target);
        const auto paste = window.waitForPaste();
        QVERIFY(paste);
        QCOMPARE(paste->text, "é — 🐞");
        QCOMPARE(paste->html, target == TargetKind::Foot ? "" : "<b>é</b>");
        QCOMPARE(window.typed(), "abc");
        QVERIFY(keys.held().isEmpty());
    }

private:
    static void addDesktops() {
        QTest::addColumn<DesktopKind>("kind");
        for (const auto &[name, kind] : desktops)
            QTest::newRow(name.constData()) << kind;
    }
};

UNPRIVILEGED_TEST_MAIN(TestStageWayland)
#include "test_stage_wayland.moc"
