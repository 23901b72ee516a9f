#include "e2e/BrindleProcess.h"

#include "support/Helpers.h"
#include "support/TestDesktop.h"

#include <QDBusMessage>
#include <QDir>
#include <QSettings>

bool storeToken(const TestDesktop &desktop, const QString &account, const QByteArray &token) {
    QProcess tool;
    tool.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    tool.setProcessEnvironment(desktop.environment());
    tool.start("secret-tool", {"store", "--label=token", "service", "org.ostrowind.brindle",
                               "account", account, "xdg:schema", "org.ostrowind.brindle"});
    tool.write(token);
    tool.closeWriteChannel();

    return tool.waitForFinished() && tool.exitCode() == 0;
}

BrindleProcess::BrindleProcess(const TestDesktop &desktop, const QMap<QString, QString> &settings,
                               const QString &program, const QStringList &arguments)
    : TestProcess(desktop.environment()), m_desktop(desktop) {
    const QString folder = desktop.environment().value("XDG_CONFIG_HOME");
    QDir().mkpath(folder);
    QSettings file(folder + "/org.ostrowind.brindle.conf", QSettings::IniFormat);
    for (auto setting = settings.begin(); setting != settings.end(); ++setting)
        file.setValue(setting.key(), setting.value());
    file.sync();
    launch(program, arguments);
}

bool BrindleProcess::isUp() {
    // The name is there before the hotkeys are, but calls are answered only by the event loop,
    // which starts after them.
    return waitFor([this] { return activate("none"); });
}

bool BrindleProcess::activate(const QString &action) {
    QDBusMessage call =
        QDBusMessage::createMethodCall("org.ostrowind.brindle", "/org/ostrowind/brindle",
                                       "org.freedesktop.Application", "ActivateAction");
    call << action << QVariantList() << QVariantMap();
    return m_desktop.bus().call(call).type() == QDBusMessage::ReplyMessage;
}
