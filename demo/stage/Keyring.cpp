#include "stage/Keyring.h"

#include "stage/VirtualDesktop.h"

#include <QProcess>

bool storeToken(const VirtualDesktop &desktop, const QString &account, const QByteArray &token) {
    QProcess tool;
    tool.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    tool.setProcessEnvironment(desktop.environment());
    tool.start("secret-tool", {"store", "--label=token", "service", "org.ostrowind.brindle",
                               "account", account, "xdg:schema", "org.ostrowind.brindle"});
    tool.write(token);
    tool.closeWriteChannel();
    return tool.waitForFinished() && tool.exitCode() == 0;
}
