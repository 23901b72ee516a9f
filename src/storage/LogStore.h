#pragma once

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>
#include <QUuid>

/// The activity log: the newest 200 lines of what the program did, in memory only.
class LogStore : public QObject {
    Q_OBJECT

public:
    struct Entry {
        QUuid id;
        QDateTime date;
        QString message;
    };

    static constexpr int maxEntries = 200;

    static LogStore &shared();

    /// Oldest first. Main thread.
    const QList<Entry> &entries() const { return m_entries; }

    /// Stamps `message` now and appends it: at once on the main thread, else in a later turn of it.
    void write(const QString &message);

    /// Empties the log in a later turn of the main thread.
    void clear();

    /// One "[HH:mm:ss] message" line an entry. Main thread.
    QString formattedAll() const;

    /// The time of day of an entry as the log shows it.
    static QString formattedTime(const QDateTime &date);

Q_SIGNALS:
    void changed();

private:
    LogStore() = default;
    void append(const Entry &entry);

    QList<Entry> m_entries;
};

/// Writes one line to the activity log. Any thread. Never with a token or an e-mail address in it.
void log(const QString &message);
