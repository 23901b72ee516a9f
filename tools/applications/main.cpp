// Brings up a desktop with a keyring, and a gateway that knows one issue, and runs the command line
// it is given there. The command finds the programs and the gateway in its environment; its exit
// status is ours.

#include "stage/LoopbackGateway.h"
#include "stage/VirtualDesktop.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

QString target(const char *key) {
    const QString path = "/ex/jira/c-1/rest/api/3/issue/%1?fields=summary,issuetype,status";
    return path.arg(QString(key));
}

GatewayReply issue(const QByteArray &summary) {
    return {.body = R"({"fields":{"summary":")" + summary +
                    R"(","issuetype":{"name":"Bug"},"status":{"name":"Done"}}})"};
}

} // namespace

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    const QStringList command = QCoreApplication::arguments().mid(1);
    if (command.isEmpty()) {
        std::fprintf(stderr, "usage: brindle_applications COMMAND [ARGUMENT...]\n");
        return 2;
    }
    const VirtualDesktop desktop({.keyring = true});
    LoopbackGateway gateway;
    for (const QString &problem : {desktop.problem(), gateway.problem()}) {
        if (!problem.isEmpty()) {
            std::fprintf(stderr, "%s\n", qPrintable(problem));
            return 2;
        }
    }
    gateway.replies = {{"/_edge/tenant_info", {.body = R"({"cloudId":"c-1"})"}},
                       {target("ABC-1"), issue("é — 🐞 <b> &")},
                       {target("ABC-2"), issue("Crash")}};
    QProcessEnvironment environment = desktop.environment();
    environment.insert("BRINDLE", BRINDLE_ON_STAGE_PROGRAM);
    environment.insert("CLIPBOARD_OWNER", CLIPBOARD_OWNER_PROGRAM);
    environment.insert("GATEWAY_PORT", QString::number(gateway.port()));
    environment.insert("GATEWAY_CERTIFICATE", gateway.certificate());
    StageProcess driver(environment);
    driver.setProcessChannelMode(QProcess::ForwardedChannels);
    if (!driver.launch(command.first(), command.mid(1))) {
        std::fprintf(stderr, "%s\n", qPrintable(driver.errorString()));
        return 2;
    }
    constexpr int hour = 60 * 60 * 1000;
    const bool ended = waitFor([&] { return driver.state() == QProcess::NotRunning; }, hour);
    return ended && driver.exitStatus() == QProcess::NormalExit ? driver.exitCode() : 2;
}
