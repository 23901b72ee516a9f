// What `brindle` loads once it is clear that it is to run and not only to pass a word on.

#include "app/Launch.h"
#include "platform/linux/LinuxPlatform.h"

#include <QApplication>

extern "C" Q_DECL_EXPORT int runBrindleGui(int argc, char *argv[]) {
    const QApplication qt(argc, argv);
    nameApplication();
    return runBrindle(makeLinuxPlatform());
}
