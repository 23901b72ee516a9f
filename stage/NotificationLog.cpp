#include "stage/NotificationLog.h"

NotificationLog::NotificationLog(const QString &busAddress)
    : m_monitor(QProcessEnvironment::systemEnvironment()) {
    m_monitor.launch(
        "dbus-monitor",
        {"--address", busAddress,
         "type='method_call',interface='org.freedesktop.Notifications',member='Notify'",
         "type='method_return',sender='org.freedesktop.Notifications'"});
    // It has lost its name and with it its voice once it listens.
    if (!waitFor([&] { return m_monitor.lines().join("").contains("member=NameLost"); }))
        m_problem = "the monitor does not listen: " + m_monitor.errorString();
}

QList<ShownNotification> NotificationLog::notifications() const {
    const QStringList &lines = m_monitor.lines();
    const auto text = [](const QString &line) {
        return line.section('"', 1, -2, QString::SectionDefault);
    };
    QList<ShownNotification> all;
    // The application, the number of the one to replace, the icon, the title and the text.
    for (qsizetype i = 0; i + 5 < lines.size(); ++i) {
        if (lines[i].startsWith("method call") && lines[i].endsWith("member=Notify"))
            all.append({text(lines[i + 1]), text(lines[i + 4]), text(lines[i + 5])});
    }
    return all;
}

bool NotificationLog::waitForAccepted(qsizetype count, int milliseconds) const {
    return waitFor(
        [&] {
            const QStringList &lines = m_monitor.lines();
            qsizetype accepted = 0; // answered with a number, as no other call is
            for (qsizetype i = 0; i + 1 < lines.size(); ++i)
                accepted +=
                    lines[i].startsWith("method return") && lines[i + 1].startsWith("   uint32 ");
            return accepted >= count;
        },
        milliseconds);
}
