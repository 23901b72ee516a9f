#include "app/Launch.h"

#include "app/Application.h"
#include "app/Signals.h"
#include "model/AppInfo.h"

#include <QApplication>

void nameApplication() {
    QApplication::setApplicationName(AppInfo::bundleIdentifier());
    QApplication::setDesktopFileName(AppInfo::bundleIdentifier());
    QApplication::setQuitOnLastWindowClosed(false);
}

int runBrindle(Platform platform) {
    quitOnSignals();
    Platform::install(std::move(platform));
    int status = 0;
    {
        Application application;
        if (application.isOnlyInstance()) {
            application.finishLaunching();
            status = QApplication::exec();
        }
    }
    // The ports use the event loop's objects and go before them.
    Platform::install({});
    return status;
}
