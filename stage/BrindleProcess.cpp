#include "stage/BrindleProcess.h"

#include "stage/Actors.h"
#include "stage/VirtualDesktop.h"

#include <QDBusMessage>
#include <QDir>
#include <QSettings>

using namespace Qt::StringLiterals;

BrindleProcess::BrindleProcess(const VirtualDesktop &desktop,
                               const QMap<QString, QString> &settings, const QString &program,
                               const QStringList &arguments)
    : StageProcess(desktop.environment()), m_desktop(desktop) {
    writeSettings(desktop, settings);
    launch(program, arguments);
}

bool BrindleProcess::writeSettings(const VirtualDesktop &desktop,
                                   const QMap<QString, QString> &settings) {
    const QString folder = desktop.environment().value(u"XDG_CONFIG_HOME"_s);
    QDir().mkpath(folder);
    QSettings file(folder + u"/org.ostrowind.brindle.conf"_s, QSettings::IniFormat);
    for (auto setting = settings.begin(); setting != settings.end(); ++setting)
        file.setValue(setting.key(), setting.value());
    file.sync();
    return file.status() == QSettings::NoError;
}

bool BrindleProcess::isUp() {
    // The name is there before the hotkeys are, but calls are answered only by the event loop,
    // which starts after them.
    return waitFor([this] { return activate(u"none"_s); });
}

bool BrindleProcess::activate(const QString &action) {
    QDBusPendingCall called = call(action);
    called.waitForFinished();
    return !called.isError();
}

QDBusPendingCall BrindleProcess::call(const QString &action) {
    QDBusMessage call =
        QDBusMessage::createMethodCall(u"org.ostrowind.brindle"_s, u"/org/ostrowind/brindle"_s,
                                       u"org.freedesktop.Application"_s, u"ActivateAction"_s);
    call << action << QVariantList() << QVariantMap();
    return m_desktop.bus().asyncCall(call);
}
