#include "bench/Benches.h"
#include "bench/Side.h"

#include "stage/GatewayThread.h"

namespace {

const QByteArray record = "507f1f77bcf86cd799439011";
const QByteArray recordLink = "https://app.example.com/records/507f1f77bcf86cd799439011";
const QByteArray issue = "https://your-team.atlassian.net/browse/ABC-1";
const QString issueTarget = "/ex/jira/c-1/rest/api/3/issue/ABC-1?fields=summary,issuetype,status";
const QByteArray rich = "text/html";

constexpr int coldRounds = 7;
constexpr int warmRounds = 6; // after each cold one
constexpr int roundTrip = 20; // milliseconds, of a network that is not on loopback

/// Has answers take `delay` milliseconds from now on, as if a network lay in between.
void setDelay(GatewayThread &gateway, int delay) {
    gateway.run([delay](LoopbackGateway &it) {
        it.replies = {{issueTarget,
                       {.body = R"({"fields":{"summary":"Crash on login","issuetype":)"
                                R"({"name":"Bug"},"status":{"name":"In Progress"}}})",
                        .delay = delay}}};
    });
}

/// The milliseconds that each answer since the last call took the gateway.
QList<double> takeAnswering(GatewayThread &gateway) {
    QList<double> answering;
    gateway.run([&](LoopbackGateway &it) { answering.swap(it.answering); });
    return answering;
}

/// The figures of one side, in milliseconds.
struct Times {
    QList<double> cold, warm;
};

/// The same request by the tool, `count` times over one connection, with pauses between them as
/// between presses. Without the server's time.
Times curl(GatewayThread &gateway, int count) {
    const QString host = "api.atlassian.com:" + QString::number(gateway.get().port());
    QStringList arguments{
        "-sS",       "--fail",
        "--rate",    "10/s",
        "-w",        "%{time_total}\\n",
        "--cacert",  gateway.get().certificate(),
        "--resolve", host + ":127.0.0.1",
        "-H",        "Accept: application/json",
        "-H",        "Authorization: Basic " + QByteArray("you@example.com:token").toBase64()};
    for (int i = 0; i < count; ++i)
        arguments += {"-o", "/dev/null", "https://" + host + issueTarget};
    QProcess tool;
    tool.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    const int connections = gateway.get().connections;
    takeAnswering(gateway);
    tool.start("curl", arguments);
    require(tool.waitForFinished() && tool.exitCode() == 0, "curl fetches nothing");
    const QList<double> served = takeAnswering(gateway);
    const QByteArrayList times = tool.readAllStandardOutput().trimmed().split('\n');
    require(served.size() == count && times.size() == count, "curl does not fetch them all");
    require(gateway.get().connections == connections + 1, "curl does not keep its connection");
    Times result;
    for (int i = 0; i < count; ++i)
        (i == 0 ? result.cold : result.warm).append(times[i].toDouble() * 1000 - served[i]);
    return result;
}

/// The product, and what it took for pastes without a fetch. Those have the detection, the
/// clipboard, the keys and the target in them, none of which the tool has; what is left of a paste
/// with a fetch is the keyring, the request, the template and the icon. The server's time is in
/// both sides' figures and would bring the ratio nearer to 1, so it is taken off both.
struct Product {
    Times issues;
    QList<double> records;
};

void measure(Side &side, GatewayThread &gateway, Product &product) {
    side.restart();
    const int connections = gateway.get().connections;
    for (int round = -1; round < warmRounds; ++round) {
        const double paste = side.paste(record, rich, recordLink);
        side.waitForRestore(record);
        takeAnswering(gateway);
        const double whole = side.paste(issue, rich, issue) - takeAnswering(gateway).value(0);
        side.waitForRestore(issue);
        if (round >= 0) // the first one of the program warms the paste up, too
            product.records.append(paste);
        (round < 0 ? product.issues.cold : product.issues.warm).append(whole);
    }
    require(gateway.get().connections == connections + 1, "the connection is not kept");
}

QList<Row> rowsOf(int delay, const Product &ours, const Times &bare) {
    const double paste = median(ours.records);
    const double cold = median(ours.issues.cold), warm = median(ours.issues.warm);
    const double bareCold = median(bare.cold), bareWarm = median(bare.warm);
    const QString what = delay ? QString("Fetch of an issue, %1 ms away").arg(delay)
                               : QString("Fetch of an issue on loopback");
    return {ratioRow(what + ", connection warm", warm - paste, bareWarm, "ms", "1.50 at most"),
            ratioRow("  first one of the program", cold - paste, bareCold, "ms", ""),
            ratioRow("  key press to text, warm, with the paste", warm, bareWarm, "ms", ""),
            ratioRow("  the same, first one", cold, bareCold, "ms", "")};
}

} // namespace

QList<Row> benchFetch() {
    // On a thread of its own, since this one waits for pastes without an event loop.
    GatewayThread gateway({"api.atlassian.com"}, {});
    require(gateway.get().problem().isEmpty(), gateway.get().problem());
    Side side({{"jiraCloudId", "c-1"}, {"accountPasteFormat", "richLink"}},
              BRINDLE_ON_STAGE_PROGRAM,
              {QString::number(gateway.get().port()), gateway.get().certificate()});
    QList<Row> rows;
    for (const int delay : {0, roundTrip}) {
        setDelay(gateway, delay);
        Product ours;
        Times bare;
        for (int round = 0; round < coldRounds; ++round) {
            measure(side, gateway, ours);
            const Times tool = curl(gateway, 1 + warmRounds);
            bare.cold += tool.cold;
            bare.warm += tool.warm;
        }
        rows += rowsOf(delay, ours, bare);
    }
    return rows;
}
