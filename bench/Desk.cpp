#include "bench/Desk.h"

#include "bench/Measure.h"

#include "model/AppInfo.h"
#include "stage/BrindleProcess.h"
#include "stage/Keyring.h"

#include <QEventLoop>
#include <QSettings>
#include <QTimer>

Desk::Desk(const QMap<QString, QString> &settings)
    : m_desktop({.keyring = true}), m_area(m_desktop.bus()) {
    require(m_desktop.problem().isEmpty(), m_desktop.problem());
    require(m_area.isThere(), "no place for a status area on the bus");
    setBrindleUp(settings);
}

void Desk::setBrindleUp(const QMap<QString, QString> &settings) const {
    QSettings file(m_desktop.environment().value("XDG_CONFIG_HOME") + '/' +
                       AppInfo::bundleIdentifier() + ".conf",
                   QSettings::IniFormat);
    file.setValue("jiraBaseURL", "https://your-team.atlassian.net");
    file.setValue("jiraEmail", "you@example.com");
    file.setValue("accountBaseURL", "https://app.example.com/records/");
    for (auto setting = settings.begin(); setting != settings.end(); ++setting)
        file.setValue(setting.key(), setting.value());
    file.sync();
    require(file.status() == QSettings::NoError, "no settings file written");
    require(storeToken(m_desktop, AppInfo::keychainAccount(), "token"), "no token stored");
}

double Desk::waitForIcon() {
    // A loop of its own: it wakes for each message at once, where a poll would round the times.
    double came = 0;
    QEventLoop loop;
    QObject::connect(&m_area, &StatusArea::StatusNotifierItemRegistered, &loop, [&] {
        came = now();
        loop.quit();
    });
    QTimer::singleShot(15000, &loop, &QEventLoop::quit);
    loop.exec();
    require(came > 0, "no icon docks");
    return came;
}
