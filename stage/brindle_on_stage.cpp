// The product, its requests led to the LoopbackGateway at the port and with the certificate given
// as arguments.

#include "app/Launch.h"
#include "platform/linux/LinuxPlatform.h"
#include "stage/RedirectedUrlSession.h"

#include <QApplication>

int main(int argc, char *argv[]) {
    const QApplication qt(argc, argv);
    nameApplication();
    const QStringList arguments = QApplication::arguments();
    Platform platform = makeLinuxPlatform();
    platform.urlSession =
        std::make_shared<RedirectedUrlSession>(arguments.value(1).toUShort(), arguments.value(2));
    return runBrindle(std::move(platform));
}
