#include "stage/BrindleProcess.h"

#include "stage/Actors.h"
#include "stage/VirtualDesktop.h"

#include <QDBusMessage>
#include <QDir>
#include <QSettings>

BrindleProcess::BrindleProcess(const VirtualDesktop &desktop,
                               const QMap<QString, QString> &settings, const QString &program,
                               const QStringList &arguments)
    : StageProcess(desktop.environment()), m_desktop(desktop) {
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
