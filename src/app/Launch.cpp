#include "app/Launch.h"

#include "app/Application.h"
#include "app/Signals.h"
#include "model/AppInfo.h"

#include <QApplication>
#include <QSessionManager>

#include <cstdio>
#include <cstdlib>

void nameApplication() {
    QApplication::setApplicationName(AppInfo::bundleIdentifier());
    QApplication::setDesktopFileName(AppInfo::bundleIdentifier());
    QApplication::setQuitOnLastWindowClosed(false);
    // Whether Brindle starts at login is chosen in the preferences. A restored session that brought
    // it back as well would start it twice, and a second start opens the preferences.
    QObject::connect(qApp, &QApplication::saveStateRequest, qApp, [](QSessionManager &session) {
        session.setRestartHint(QSessionManager::RestartNever);
    });
}

namespace {

/// Whether the event loop may be running.
bool isRunning = false;

/// When its display goes away, the toolkit calls exit() in the middle of whatever is under way,
/// with threads at work on objects that exit() is about to destroy. There is nothing left to give
/// back; the settings are on disk.
void endWithTheDisplay() {
    if (isRunning)
        std::_Exit(EXIT_SUCCESS);
}

} // namespace

int runBrindle(Platform platform) {
    quitOnSignals();
    Platform::install(std::move(platform));
    int status = 0;
    {
        Application application;
        switch (application.claim()) {
        case ApplicationService::Claim::Taken:
            application.finishLaunching();
            isRunning = true;
            // Last, so that it runs before anything made so far is destroyed.
            std::atexit(endWithTheDisplay);
            status = QApplication::exec();
            break;
        case ApplicationService::Claim::HandedOver:
            break;
        case ApplicationService::Claim::NoAnswer:
            std::fputs("brindle: the running Brindle does not answer\n", stderr);
            status = EXIT_FAILURE;
            break;
        }
    }
    // The ports use the event loop's objects and go before them.
    Platform::install({});
    isRunning = false;
    return status;
}
