#include "app/Launch.h"
#include "platform/linux/LinuxPlatform.h"

#include <QApplication>

int main(int argc, char *argv[]) {
    const QApplication qt(argc, argv);
    nameApplication();
    return runBrindle(makeLinuxPlatform());
}
