#include "fuzz/Fuzz.h"
#include "model/TypeEmojiMapping.h"

using Fuzz::require;

namespace {

void checkTable(const QList<TypeEmojiMapping> &table) {
    const QByteArray json = encodeTypeEmojiMappings(table);
    require(decodeTypeEmojiMappings(json) == table, "a table comes back as it was stored");
    for (const TypeEmojiMapping &row : table) {
        const QString emoji = emojiForType(table, row.type);
        require(emoji == emojiForType(table, row.type.toUpper().toLower()) ||
                    row.type.toUpper().toLower() != row.type.toLower(),
                "letter case makes no difference");
        require(std::any_of(table.begin(), table.end(),
                            [&](const TypeEmojiMapping &other) { return other.emoji == emoji; }),
                "a type in the table has an emoji of the table");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    if (const auto table = decodeTypeEmojiMappings(bytes))
        checkTable(*table);

    Fuzz::Fields fields(data, size);
    QList<TypeEmojiMapping> typed;
    while (!fields.atEnd() && typed.size() < 50) {
        const QString type = fields.nextText();
        typed.append({.type = type, .emoji = fields.nextText()});
    }
    checkTable(typed);
    return 0;
}
