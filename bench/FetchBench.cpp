#include "bench/Benches.h"
#include "bench/Side.h"

#include "stage/GatewayThread.h"

namespace {

const QByteArray record = "507f1f77bcf86cd799439011";
const QByteArray recordLink = "https://app.example.com/records/507f1f77bcf86cd799439011";
const QByteArray issue = "https://your-team.atlassian.net/browse/ABC-1";
const QString issueTarget = "/ex/jira/c-1/rest/api/3/issue/ABC-1?fields=summary,issuetype,status";
const QByteArray rich = "text/html";

constexpr int coldRounds = 9;
constexpr int warmRounds = 6; // after each cold one

/// The milliseconds that the gateway has spent on answers since the last call.
double takeAnswering(GatewayThread &gateway) {
    double answering = 0;
    gateway.run([&](LoopbackGateway &it) { answering = std::exchange(it.answering, 0); });
    return answering;
}

/// The figures of one side, in milliseconds.
struct Times {
    QList<double> cold, warm;
};

/// The same request by the tool, `count` times over one connection, with pauses between them as
/// between presses. Without the server's time, of which each request gets the same share.
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
    const double served = takeAnswering(gateway) / count;
    require(gateway.get().connections == connections + 1, "curl does not keep its connection");
    Times times;
    for (const QByteArray &line : tool.readAllStandardOutput().trimmed().split('\n'))
        (times.cold.isEmpty() ? times.cold : times.warm).append(line.toDouble() * 1000 - served);
    return times;
}

/// The product, and what it took for pastes without a fetch.
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
        const double whole = side.paste(issue, rich, issue) - takeAnswering(gateway);
        side.waitForRestore(issue);
        if (round >= 0) // the first one of the program warms the paste up, too
            product.records.append(paste);
        (round < 0 ? product.issues.cold : product.issues.warm).append(whole);
    }
    require(gateway.get().connections == connections + 1, "the connection is not kept");
}

} // namespace

QList<Row> benchFetch() {
    // On a thread of its own, since this one waits for pastes without an event loop.
    GatewayThread gateway({"api.atlassian.com"},
                          {{issueTarget,
                            {.body = R"({"fields":{"summary":"Crash on login","issuetype":)"
                                     R"({"name":"Bug"},"status":{"name":"In Progress"}}})"}}});
    require(gateway.get().problem().isEmpty(), gateway.get().problem());
    Side side({{"jiraCloudId", "c-1"}, {"accountPasteFormat", "richLink"}},
              BRINDLE_ON_STAGE_PROGRAM,
              {QString::number(gateway.get().port()), gateway.get().certificate()});
    Product ours;
    Times bare;
    for (int round = 0; round < coldRounds; ++round) {
        measure(side, gateway, ours);
        const Times tool = curl(gateway, 1 + warmRounds);
        bare.cold += tool.cold;
        bare.warm += tool.warm;
    }
    const double paste = median(ours.records);
    const double cold = median(ours.issues.cold), warm = median(ours.issues.warm);
    const double bareCold = median(bare.cold), bareWarm = median(bare.warm);
    return {ratioRow("Fetch of an issue, connection warm", warm - paste, bareWarm, "ms",
                     "1.50 at most"),
            ratioRow("  first one of the program", cold - paste, bareCold, "ms", ""),
            ratioRow("  key press to text, warm, with the paste", warm, bareWarm, "ms", ""),
            ratioRow("  the same, first one", cold, bareCold, "ms", "")};
}
