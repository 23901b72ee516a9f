#include "app/Signals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>

#include <sys/socket.h>
#include <unistd.h>

namespace {

/// A signal handler may do next to nothing; it writes here and the event loop reads at the other
/// end.
int signalPipe[2];

void handle(int) {
    const char byte = 1;
    // Nothing can be done in here if it fails.
    [[maybe_unused]] const auto written = write(signalPipe[0], &byte, sizeof byte);
}

} // namespace

void quitOnSignals() {
    // A display or a bus that goes away while something is written to it must not end us before the
    // toolkit has told us.
    std::signal(SIGPIPE, SIG_IGN);
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, signalPipe) != 0)
        return;
    auto *notifier = new QSocketNotifier(signalPipe[1], QSocketNotifier::Read, qApp);
    QObject::connect(notifier, &QSocketNotifier::activated, qApp, [] { QCoreApplication::quit(); });
    struct sigaction action {};
    action.sa_handler = handle;
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaction(signal, &action, nullptr);
}
