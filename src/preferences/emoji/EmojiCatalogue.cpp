#include "preferences/emoji/EmojiCatalogue.h"

#include <unicode/uchar.h>
#include <unicode/uloc.h>
#include <unicode/uset.h>

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <array>
#include <optional>

namespace EmojiCatalogue {

namespace {

constexpr qsizetype recentLimit = 16;
constexpr char32_t pictureSelector = 0xFE0F; ///< asks for a picture where text is the default
constexpr char32_t regionalA = 0x1F1E6;

QString nameOf(char32_t character) {
    std::array<char, 128> name{};
    UErrorCode error = U_ZERO_ERROR;
    u_charName(static_cast<UChar32>(character), U_EXTENDED_CHAR_NAME, name.data(), name.size(),
               &error);
    return U_SUCCESS(error) ? QString::fromLatin1(name.data()).toLower() : QString();
}

/// "flag: germany" for the pair of regional letters that stands for it.
QString nameOfFlag(const QList<uint> &letters) {
    QByteArray locale("und_");
    for (const uint letter : letters)
        locale += static_cast<char>('A' + (letter - regionalA));
    std::array<UChar, 128> name{};
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length =
        uloc_getDisplayCountry(locale.constData(), "en", name.data(), name.size(), &error);
    if (U_FAILURE(error))
        return QStringLiteral("flag");
    return QStringLiteral("flag: ") + QString::fromUtf16(name.data(), length).toLower();
}

QString nameOf(const QString &emoji) {
    QList<uint> characters = emoji.toUcs4();
    characters.removeAll(pictureSelector);
    if (characters.size() == 2 && characters.first() >= regionalA)
        return nameOfFlag(characters);
    return characters.isEmpty() ? QString() : nameOf(characters.first());
}

/// Where a block of characters comes in the list.
int rank(const Emoji &emoji) {
    const char32_t first = emoji.text.toUcs4().value(0);
    if (first >= regionalA && first < regionalA + 26)
        return 9;
    switch (ublock_getCode(static_cast<UChar32>(first))) {
    case UBLOCK_EMOTICONS:
        return 0;
    case UBLOCK_SUPPLEMENTAL_SYMBOLS_AND_PICTOGRAPHS:
        return 1;
    case UBLOCK_MISCELLANEOUS_SYMBOLS_AND_PICTOGRAPHS:
        return 2;
    case UBLOCK_SYMBOLS_AND_PICTOGRAPHS_EXTENDED_A:
        return 3;
    case UBLOCK_TRANSPORT_AND_MAP_SYMBOLS:
        return 4;
    case UBLOCK_MISCELLANEOUS_SYMBOLS:
    case UBLOCK_DINGBATS:
        return 5;
    default:
        return 6;
    }
}

void appendAll(UProperty property, QList<Emoji> &emoji) {
    UErrorCode error = U_ZERO_ERROR;
    const USet *set = u_getBinaryPropertySet(property, &error);
    if (U_FAILURE(error))
        return;
    const auto append = [&](const QString &text) {
        const QString name = nameOf(text);
        // Shades of skin only make sense behind another picture.
        if (u_hasBinaryProperty(static_cast<UChar32>(text.toUcs4().value(0)), UCHAR_EMOJI_MODIFIER))
            return;
        if (!name.isEmpty())
            emoji.append({text, name});
    };
    for (int32_t i = 0, count = uset_getItemCount(set); i < count; ++i) {
        UChar32 start = 0;
        UChar32 end = 0;
        std::array<UChar, 32> text{};
        const int32_t length = uset_getItem(set, i, &start, &end, text.data(), text.size(), &error);
        if (length >= 2)
            append(QString::fromUtf16(text.data(), length));
        else if (length == 0)
            for (UChar32 one = start; one <= end; ++one)
                append(QString::fromUcs4(reinterpret_cast<const char32_t *>(&one), 1));
    }
}

QStringList wordsOf(const QString &text) {
    static const QRegularExpression separators(QStringLiteral("[^\\w]+"),
                                               QRegularExpression::UseUnicodePropertiesOption);
    return text.toLower().split(separators, Qt::SkipEmptyParts);
}

/// How well a name meets the words of a query: 0 when it is they, 1 when each is a word of it, 2
/// when each starts one, 3 when each stands somewhere in it; nothing otherwise.
std::optional<int> rankOf(const QString &name, const QStringList &query) {
    const QStringList words = wordsOf(name);
    if (words == query)
        return 0;
    int worst = 1;
    for (const QString &wanted : query) {
        const bool starts = std::any_of(words.begin(), words.end(), [&](const QString &word) {
            return word.startsWith(wanted);
        });
        if (!starts && !name.contains(wanted))
            return std::nullopt;
        worst = std::max(worst, words.contains(wanted) ? 1 : starts ? 2 : 3);
    }
    return worst;
}

QList<Emoji> &recentList() {
    static QList<Emoji> list;
    return list;
}

} // namespace

const QList<Emoji> &all() {
    static const QList<Emoji> list = [] {
        QList<Emoji> emoji;
        appendAll(UCHAR_BASIC_EMOJI, emoji);
        appendAll(UCHAR_RGI_EMOJI_FLAG_SEQUENCE, emoji);
        std::stable_sort(emoji.begin(), emoji.end(),
                         [](const Emoji &a, const Emoji &b) { return rank(a) < rank(b); });
        return emoji;
    }();
    return list;
}

QList<Emoji> matching(const QString &query) {
    const QStringList words = wordsOf(query);
    std::array<QList<Emoji>, 4> found;
    for (const Emoji &emoji : all()) {
        if (emoji.text == query.trimmed())
            found[0].append(emoji);
        else if (const auto rank = words.isEmpty() ? std::nullopt : rankOf(emoji.name, words))
            found.at(static_cast<size_t>(*rank)).append(emoji);
    }
    return found[0] + found[1] + found[2] + found[3];
}

const QList<Emoji> &recent() {
    return recentList();
}

void remember(const Emoji &emoji) {
    QList<Emoji> &list = recentList();
    list.removeIf([&](const Emoji &one) { return one.text == emoji.text; });
    list.prepend(emoji);
    if (list.size() > recentLimit)
        list.removeLast();
}

} // namespace EmojiCatalogue
