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

    /// `text` with a space for each line end and tab, and U+FFFD for what is no character to show.
    /// Pure, any thread.
    static QString oneLine(QStringView text);

    /// What a log line shows of a text that is not ours, such as a server's: its first 100
    /// characters, with "…" for the rest. Pure, any thread.
    static QString excerpt(QStringView foreign);

Q_SIGNALS:
    void changed();

private:
    LogStore() = default;
    void append(const Entry &entry);

    QList<Entry> m_entries;
};

/// Writes `message`, put on one line, to the activity log. Any thread. Never with a token or an
/// e-mail address in it.
void log(const QString &message);
