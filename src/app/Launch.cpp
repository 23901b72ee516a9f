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

int runBrindle(Platform platform) {
    quitOnSignals();
    Platform::install(std::move(platform));
    int status = 0;
    {
        Application application;
        switch (application.claim()) {
        case ApplicationService::Claim::Taken:
            application.finishLaunching();
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
    return status;
}
