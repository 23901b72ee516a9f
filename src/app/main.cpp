#include "app/Application.h"
#include "model/AppInfo.h"
#include "platform/linux/LinuxPlatform.h"

#include <QApplication>

int main(int argc, char *argv[]) {
    QApplication qt(argc, argv);
    QApplication::setApplicationName(AppInfo::bundleIdentifier());
    QApplication::setDesktopFileName(AppInfo::bundleIdentifier());
    QApplication::setQuitOnLastWindowClosed(false);

    Platform::install(makeLinuxPlatform());
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
