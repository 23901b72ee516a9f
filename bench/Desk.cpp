#include "bench/Desk.h"

#include "bench/Measure.h"

#include <QEventLoop>
#include <QTimer>

Desk::Desk(const QMap<QString, QString> &settings) {
    require(desktop.problem().isEmpty(), desktop.problem());
    require(isStored, "no token stored");
    require(m_area.isThere(), "no place for a status area on the bus");
    QMap<QString, QString> all{{"jiraBaseURL", "https://your-team.atlassian.net"},
                               {"jiraEmail", "you@example.com"},
                               {"accountBaseURL", "https://app.example.com/records/"}};
    all.insert(settings);
    require(BrindleProcess::writeSettings(desktop, all), "no settings file written");
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
