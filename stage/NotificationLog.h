#pragma once

#include "stage/StageProcess.h"

/// One call of Notify, as it came to the notification daemon.
struct ShownNotification {
    QString application, title, body;
};

/// Listens to what a notification daemon is asked to show, as a monitor of the bus: the daemon and
/// the program under test notice nothing. Complete from the constructor on. Texts must be of one
/// line. Belongs to the main thread, in whose event loop it listens.
class NotificationLog {
public:
    explicit NotificationLog(const QString &busAddress);

    /// Why nothing is heard; empty when all is well.
    QString problem() const { return m_problem; }
    /// All calls so far, oldest first.
    QList<ShownNotification> notifications() const;
    /// Waits until the daemon has accepted `count` notifications in all; false after the bound.
    bool waitForAccepted(qsizetype count, int milliseconds = 15000) const;

private:
    StageProcess m_monitor;
    QString m_problem;
};
