#include "storage/LogStore.h"

#include "platform/Platform.h"

#include <QStringList>

LogStore &LogStore::shared() {
    static LogStore store;
    return store;
}

void LogStore::write(const QString &message) {
    Dispatch &dispatch = *Platform::current().dispatch;
    Entry entry{QUuid::createUuid(), dispatch.wallTime(), message};
    if (dispatch.isMainThread())
        append(entry);
    else
        dispatch.toMain([this, entry = std::move(entry)] { append(entry); });
}

void LogStore::append(const Entry &entry) {
    m_entries.append(entry);
    if (m_entries.size() > maxEntries)
        m_entries.remove(0, m_entries.size() - maxEntries);
    Q_EMIT changed();
}

void LogStore::clear() {
    Platform::current().dispatch->toMain([this] {
        m_entries.clear();
        Q_EMIT changed();
    });
}

QString LogStore::formattedAll() const {
    QStringList lines;
    lines.reserve(m_entries.size());
    for (const Entry &entry : m_entries)
        lines.append(QStringLiteral("[%1] ").arg(formattedTime(entry.date)) + entry.message);
    return lines.join(u'\n');
}

QString LogStore::formattedTime(const QDateTime &date) {
    return date.toLocalTime().toString(u"HH:mm:ss");
}

void log(const QString &message) {
    LogStore::shared().write(message);
}
