#include "model/TypeEmojiMapping.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

/// The UUID written in its canonical form. QUuid reads more than that (braces, missing hyphens)
/// and answers what it cannot read with the null UUID, which is a valid one too.
std::optional<QUuid> canonicalUuid(const QString &text) {
    static const QRegularExpression pattern(
        u"\\A[0-9A-Fa-f]{8}(-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}\\z"_s);
    if (!pattern.match(text).hasMatch())
        return std::nullopt;
    return QUuid::fromString(text);
}

std::optional<TypeEmojiMapping> decodeRow(const QJsonValue &value) {
    if (!value.isObject())
        return std::nullopt;
    const QJsonValue id = value["id"_L1];
    const QJsonValue type = value["type"_L1];
    const QJsonValue emoji = value["emoji"_L1];
    if (!id.isString() || !type.isString() || !emoji.isString())
        return std::nullopt;
    const std::optional<QUuid> uuid = canonicalUuid(id.toString());
    if (!uuid)
        return std::nullopt;
    return TypeEmojiMapping{*uuid, type.toString(), emoji.toString()};
}

} // namespace

const QList<TypeEmojiMapping> &defaultTypeEmojiMappings() {
    static const QList<TypeEmojiMapping> mappings{
        {.type = u"Bug"_s, .emoji = u"\U0001F41B"_s},
        {.type = u"Story"_s, .emoji = u"\U0001F4D6"_s},
        {.type = u"Task"_s, .emoji = u"\u2705"_s},
        {.type = u"Epic"_s, .emoji = u"\U0001F3AF"_s},
        {.type = u"Sub-task"_s, .emoji = u"\U0001F517"_s},
    };
    return mappings;
}

QString emojiForType(const QList<TypeEmojiMapping> &mappings, const QString &type) {
    const QString wanted = type.toLower();
    for (const TypeEmojiMapping &mapping : mappings) {
        if (mapping.type.toLower() == wanted)
            return mapping.emoji;
    }
    return {};
}

QByteArray encodeTypeEmojiMappings(const QList<TypeEmojiMapping> &mappings) {
    QJsonArray rows;
    for (const TypeEmojiMapping &mapping : mappings) {
        rows.append(QJsonObject{{u"id"_s, mapping.id.toString(QUuid::WithoutBraces).toUpper()},
                                {u"type"_s, mapping.type},
                                {u"emoji"_s, mapping.emoji}});
    }
    return QJsonDocument(rows).toJson(QJsonDocument::Compact);
}

std::optional<QList<TypeEmojiMapping>> decodeTypeEmojiMappings(const QByteArray &json) {
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isArray())
        return std::nullopt;
    QList<TypeEmojiMapping> mappings;
    for (const auto &value : document.array()) {
        const std::optional<TypeEmojiMapping> row = decodeRow(value);
        if (!row)
            return std::nullopt;
        mappings.append(*row);
    }
    return mappings;
}
