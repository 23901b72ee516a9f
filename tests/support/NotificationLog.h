#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>

/// One call of Notify, as it came to the notification daemon.
struct ShownNotification {
    QString application;
    QString title;
    QString body;
    /// What the daemon calls it; 0 as long as it has not accepted it.
    uint32_t id = 0;
};

/// Listens to what a notification daemon is asked to show and what it answers, as a monitor of
/// the bus: the daemon and the program under test notice nothing. It is complete from the
/// constructor on; calls may be made from any thread.
class NotificationLog {
public:
    explicit NotificationLog(const QString &busAddress);
    ~NotificationLog();
    NotificationLog(const NotificationLog &) = delete;
    NotificationLog &operator=(const NotificationLog &) = delete;

    /// Why nothing is heard; empty when all is well.
    QString problem() const { return m_problem; }
    /// All calls so far, oldest first.
    QList<ShownNotification> notifications() const;
    /// Waits until the daemon has accepted `count` notifications in all; false after the bound.
    bool waitForAccepted(qsizetype count, int milliseconds = 15000) const;

private:
    struct Heard;
    struct Connection;

    std::shared_ptr<Heard> m_heard;
    std::unique_ptr<Connection> m_connection;
    QString m_problem;
};
