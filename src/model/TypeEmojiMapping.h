#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

/// One row of the table that gives each issue type its emoji.
struct TypeEmojiMapping {
    /// Tells rows apart in the editor; a new row gets a random one.
    QUuid id = QUuid::createUuid();
    /// The name of the issue type, as the user typed it.
    QString type;
    /// What stands for the type; normally one emoji, but any text will do.
    QString emoji;

    bool operator==(const TypeEmojiMapping &) const = default;
};

/// The table a new user starts with. Built once per process, so its ids stay the same until the
/// end. Usable from any thread.
const QList<TypeEmojiMapping> &defaultTypeEmojiMappings();

/// The emoji of the first row whose type equals `type` but for letter case; empty if there is none.
QString emojiForType(const QList<TypeEmojiMapping> &mappings, const QString &type);

/// The table as a JSON array in UTF-8, in order.
QByteArray encodeTypeEmojiMappings(const QList<TypeEmojiMapping> &mappings);

/// The table that `json` holds. Nothing if it is no array, or if any row lacks "id", "type" or
/// "emoji", has another type there than a string, or an id that is not a UUID in its 36-character
/// form (in either letter case). Members of other names are ignored.
std::optional<QList<TypeEmojiMapping>> decodeTypeEmojiMappings(const QByteArray &json);
