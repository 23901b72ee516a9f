#include "stage/Keyring.h"

#include "stage/VirtualDesktop.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
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

bool lockKeyring(const VirtualDesktop &desktop) {
    QDBusMessage lock =
        QDBusMessage::createMethodCall("org.freedesktop.secrets", "/org/freedesktop/secrets",
                                       "org.freedesktop.Secret.Service", "Lock");
    const QDBusObjectPath keyring("/org/freedesktop/secrets/aliases/default");
    lock << QVariant::fromValue(QList<QDBusObjectPath>{keyring});
    const QDBusMessage answer = desktop.bus().call(lock);
    return !answer.arguments().value(0).value<QDBusArgument>().atEnd();
}
