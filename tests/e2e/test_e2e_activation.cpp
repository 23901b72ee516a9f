#include "stage/Actors.h"
#include "stage/BrindleProcess.h"
#include "stage/VirtualDesktop.h"
#include "support/Unprivileged.h"

#include <signal.h>

namespace {

/// A running Brindle that only notes with what platform data it is called.
class RunningOne : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    explicit RunningOne(QDBusConnection bus) {
        bus.registerObject("/org/ostrowind/brindle", this, QDBusConnection::ExportAllSlots);
        isThere = bus.registerService("org.ostrowind.brindle");
    }

    bool isThere;
    QStringList calls; ///< each with its token

public Q_SLOTS:
    void Activate(const QVariantMap &platformData) { note("", platformData); }
    void ActivateAction(const QString &name, const QVariantList &,
                        const QVariantMap &platformData) {
        note(name, platformData);
    }

private:
    void note(const QString &name, const QVariantMap &platformData) {
        calls.append(name + "|" + platformData.value("activation-token", "none").toString());
    }
};

} // namespace

/// How our windows come to the front where programs can't just raise them.
class TestE2eActivation : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tokensOfLaunchersAreHandedOn() {
        const VirtualDesktop desktop({.kind = DesktopKind::Sway});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        RunningOne running(desktop.bus());
        QVERIFY(running.isThere);
        for (const auto &[words, token, call] :
             {std::tuple(QStringList("preferences"), "some-token", "preferences|some-token"),
              std::tuple(QStringList("log"), "", "logs|none"),
              std::tuple(QStringList(), "some-token", "|some-token"),
              std::tuple(QStringList(), "", "|none")}) {
            QProcessEnvironment environment = desktop.environment();
            environment.insert("XDG_ACTIVATION_TOKEN", token);
            StageProcess caller(environment);
            QVERIFY(caller.launch(BRINDLE_PROGRAM, words));
            QVERIFY2(waitFor([&] { return caller.state() == QProcess::NotRunning; }), call);
            QCOMPARE(running.calls, QStringList(call));
            running.calls.clear();
        }
    }

    void preferencesComeUpWithoutAToken_data() {
        QTest::addColumn<DesktopKind>("kind");
        QTest::addColumn<bool>("isBusy");
        QTest::newRow("sway") << DesktopKind::Sway << false;
        QTest::newRow("sway, called before it heard that it lost the focus")
            << DesktopKind::Sway << true;
        QTest::newRow("KWin") << DesktopKind::KWin << false;
    }
    void preferencesComeUpWithoutAToken() {
        QFETCH(DesktopKind, kind);
        QFETCH(bool, isBusy);
        const VirtualDesktop desktop({.kind = kind});
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        const PasteTarget first(desktop, TargetKind::Qt);
        QVERIFY(waitFor([&] { return first.hasFocus(); }));
        BrindleProcess brindle(desktop, {}); // without an address it asks for one
        QVERIFY(brindle.isUp());
        QVERIFY(waitFor([&] { return !first.hasFocus(); }));
        if (isBusy)
            kill(static_cast<pid_t>(brindle.processId()), SIGSTOP);
        const PasteTarget second(desktop, TargetKind::Qt);
        QVERIFY(waitFor([&] { return second.hasFocus(); }));
        brindle.call("preferences");
        kill(static_cast<pid_t>(brindle.processId()), SIGCONT);
        QVERIFY(waitFor([&] { return !second.hasFocus(); }));
    }
};

UNPRIVILEGED_TEST_MAIN(TestE2eActivation)
#include "test_e2e_activation.moc"
