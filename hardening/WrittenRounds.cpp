#include "hardening/WrittenRounds.h"

#include "storage/Settings.h"

#include <QTimeZone>

using namespace Qt::StringLiterals;

namespace {

// What the file must quote, and enough of it that it is not written in one breath.
QString textOf(int round) {
    return QString::number(round) + u": é — 🐞 \"a\\b\"; {key}, [x]=%\n"_s.repeated(20);
}

int roundOf(const QString &text) {
    const int round = text.section(u':', 0, 0).toInt();
    return text == textOf(round) ? round : -1;
}

constexpr int rows = 50;

QList<TypeEmojiMapping> tableOf(int round) {
    static const QUuid id = QUuid::createUuid();
    return QList<TypeEmojiMapping>(rows, {id, textOf(round), u"🦔"_s});
}

int roundOf(const QList<TypeEmojiMapping> &table) {
    if (table.size() != rows)
        return -1;
    const int round = roundOf(table.constFirst().type);
    const bool isWhole = std::all_of(table.begin(), table.end(),
                                     [&](const auto &row) { return roundOf(row.type) == round; });
    return isWhole ? round : -1;
}

} // namespace

void WrittenRounds::write(Settings &settings, int round) {
    settings.email = textOf(round);
    settings.typeEmojiMappings = tableOf(round);
    settings.hotkeyKeyCode = static_cast<quint32>(round);
    settings.displayTemplate = textOf(round);
    settings.tokenSavedAt = QDateTime::fromSecsSinceEpoch(round, QTimeZone::utc());
    settings.commentEmoji = textOf(round);
}

QList<int> WrittenRounds::read(const Settings &settings) {
    const auto savedAt = settings.tokenSavedAt();
    return {roundOf(settings.email()),
            roundOf(settings.typeEmojiMappings()),
            static_cast<int>(settings.hotkeyKeyCode()),
            roundOf(settings.displayTemplate()),
            savedAt ? static_cast<int>(savedAt->toSecsSinceEpoch()) : -1,
            roundOf(settings.commentEmoji())};
}
