#include "e2e/Scene.h"
#include "e2e/Site.h"

#include <QDBusConnectionInterface>
#include <QElapsedTimer>

namespace {

/// Longer than any end may take, also on a machine under load, and far shorter than what it would
/// wait for if it waited: a stalled server, a keyring's prompt, a hung owner of the clipboard.
constexpr int longestEnd = 4000;

/// How the program is told to end.
using Way = std::function<void(Site &)>;

void sendSignal(Site &site, int number) {
    kill(static_cast<pid_t>(site.brindle->processId()), number);
}

void killDisplay(Site &site) {
    for (const qint64 id : site.desktop.processes()) {
        if (QFile::symLinkTarget(QString("/proc/%1/exe").arg(id)).contains("/Xephyr"))
            kill(static_cast<pid_t>(id), SIGKILL);
    }
}

/// What is under way when it is told to. The owner of the clipboard lives until the end.
struct State {
    std::unique_ptr<ClipboardOwner> owner;
    bool isReached = false;
};

State copyAndPress(Site &site, const QString &text, const QStringList &manners = {}) {
    State state{std::make_unique<ClipboardOwner>(site.desktop, site.copied(text), manners)};
    site.press();
    return state;
}

bool isAsked(Site &site, const QString &target) {
    return waitFor([&] {
        return std::any_of(site.gateway.requests.cbegin(), site.gateway.requests.cend(),
                           [&](const GatewayRequest &request) { return request.target == target; });
    });
}

State stalledAt(Site &site, const QString &target) {
    site.gateway.replies[target] = {.body = "{}", .manner = GatewayReply::Manner::Stalled};
    State state = copyAndPress(site, issue);
    state.isReached = isAsked(site, target);
    return state;
}

State heldHotkey(Site &site) {
    State state{std::make_unique<ClipboardOwner>(site.desktop, site.copied(record))};
    for (const int key : Scene::hotkey())
        site.keys.press(key);
    state.isReached = site.clipboardBecomes(recordLink);
    return state;
}

State waitingToRestore(Site &site) {
    State state = copyAndPress(site, record);
    state.isReached = site.target->waitForPaste().has_value();
    return state;
}

State hungOwner(Site &site) {
    State state = copyAndPress(site, record, {"--never-answer"});
    state.isReached = !state.owner->waitForEvent("swallowed").isEmpty();
    return state;
}

State stoppedKeyring(Site &site) {
    const auto keyring = static_cast<pid_t>(
        site.desktop.bus().interface()->servicePid("org.freedesktop.secrets").value());
    StageProcess monitor(site.desktop.environment(), site.desktop.home() + "/log/monitor");
    monitor.launch("dbus-monitor", {"--session", "destination=org.freedesktop.secrets"});
    const auto isAsked = [&] { return !monitor.lines().filter("member=").isEmpty(); };
    waitFor([&] { return !monitor.lines().isEmpty(); });
    kill(keyring, SIGSTOP);
    State state = copyAndPress(site, issue);
    state.isReached = waitFor(isAsked);
    return state;
}

State withWindows(Site &site) {
    State state;
    state.isReached = site.brindle->activate("preferences") && site.brindle->activate("logs") &&
                      site.shows("Settings") && site.shows("Brindle Logs");
    return state;
}

} // namespace

class TestE2eEnd : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void endsCleanlyWhateverIsUnderWay_data() {
        QTest::addColumn<std::function<State(Site &)>>("reach");
        QTest::addColumn<Way>("end");
        const QList<std::pair<const char *, std::function<State(Site &)>>> states{
            {"idle",
             [](Site &) {
                 return State{nullptr, true};
             }},
            {"tenant stalled", [](Site &site) { return stalledAt(site, tenantTarget); }},
            {"issue stalled", [](Site &site) { return stalledAt(site, issueTarget); }},
            {"hotkey held", heldHotkey},
            {"waiting to restore", waitingToRestore},
            {"hung owner", hungOwner},
            {"keyring stopped", stoppedKeyring},
            {"windows open", withWindows}};
        const QList<std::pair<const char *, Way>> ways{
            {"SIGTERM", [](Site &site) { sendSignal(site, SIGTERM); }},
            {"SIGINT", [](Site &site) { sendSignal(site, SIGINT); }},
            {"quit", [](Site &site) { site.brindle->activate("quit"); }},
            {"display", killDisplay}};
        // Each state ends in one way, and each way ends two of them; with BRINDLE_ALL_ENDS all do.
        const bool all = qEnvironmentVariableIsSet("BRINDLE_ALL_ENDS");
        for (qsizetype state = 0; state < states.size(); ++state) {
            for (qsizetype way = 0; way < ways.size(); ++way) {
                if (all || way == state % ways.size())
                    QTest::addRow("%s, %s", states[state].first, ways[way].first)
                        << states[state].second << ways[way].second;
            }
        }
    }

    void endsCleanlyWhateverIsUnderWay() {
        QFETCH(std::function<State(Site &)>, reach);
        QFETCH(Way, end);
        Site site({}, {.physicalKeyboard = true, .notifications = true, .keyring = true});
        QVERIFY(site.isReady());
        const State state = reach(site);
        QVERIFY(state.isReached);
        QElapsedTimer timer;
        timer.start();
        end(site);
        QVERIFY(waitFor([&] { return site.brindle->state() == QProcess::NotRunning; }, 30000));
        QVERIFY2(site.brindle->exitStatus() == QProcess::NormalExit,
                 qPrintable(QString("ended by signal %1").arg(site.brindle->exitCode())));
        QCOMPARE(site.brindle->exitCode(), 0);
        QVERIFY2(timer.elapsed() < longestEnd, qPrintable(QString::number(timer.elapsed())));
        qInfo("ended after %lld ms", timer.elapsed());
    }
};

QTEST_GUILESS_MAIN(TestE2eEnd)
#include "test_e2e_end.moc"
