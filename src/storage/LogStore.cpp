#include "storage/LogStore.h"

#include "model/Text.h"
#include "platform/Platform.h"

#include <QStringList>

#include <algorithm>

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

QString LogStore::oneLine(QStringView text) {
    QString line;
    line.reserve(text.size());
    for (const char32_t character : text.toUcs4()) {
        const QChar::Category category = QChar::category(character);
        const bool isControl = category == QChar::Other_Control;
        if (category == QChar::Separator_Line || category == QChar::Separator_Paragraph ||
            (isControl && QChar::isSpace(character)))
            line += u' ';
        else if (isControl || QChar::isNonCharacter(character))
            line += QChar::ReplacementCharacter;
        else
            line += QChar::fromUcs4(character);
    }
    return line;
}

QString LogStore::excerpt(QStringView foreign) {
    constexpr qsizetype mostCharacters = 100;
    // A single character can be of any length.
    constexpr qsizetype mostUnits = 4 * mostCharacters;
    const QString start =
        Text::firstCharacters(foreign.first(std::min(foreign.size(), mostUnits)), mostCharacters);
    return start.size() < foreign.size() ? oneLine(start) + u'…' : oneLine(start);
}

void log(const QString &message) {
    LogStore::shared().write(LogStore::oneLine(message));
}
