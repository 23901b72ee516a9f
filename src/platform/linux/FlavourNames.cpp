#include "platform/linux/FlavourNames.h"

#include <QStringDecoder>

#include <algorithm>
#include <iterator>

namespace {

struct Name {
    const char *name;
    PasteboardType type;
};

/// In order of preference for reading within each type. Names compare without case, since charset
/// and MIME types do.
constexpr Name names[] = {
    {"text/plain;charset=utf-8", PasteboardType::String},
    {"UTF8_STRING", PasteboardType::String},
    {"text/plain", PasteboardType::String},
    {"STRING", PasteboardType::String},
    {"TEXT", PasteboardType::String},
    {"COMPOUND_TEXT", PasteboardType::String},
    {"text/html", PasteboardType::Html},
    {"text/rtf", PasteboardType::Rtf},
    {"application/rtf", PasteboardType::Rtf},
    {"text/richtext", PasteboardType::Rtf},
    {"text/uri-list", PasteboardType::Url},
    {"x-special/gnome-copied-files", PasteboardType::FileUrl},
    {"text/tab-separated-values", PasteboardType::TabularText},
};

QByteArray withoutParameters(const QByteArray &name) {
    const qsizetype semicolon = name.indexOf(';');
    return (semicolon < 0 ? name : name.left(semicolon)).trimmed();
}

const Name *find(const QByteArray &name) {
    for (const Name &known : names) {
        if (name.compare(known.name, Qt::CaseInsensitive) == 0)
            return &known;
    }
    return nullptr;
}

QString decodeUtf16(const QByteArray &data, QStringDecoder::Encoding byteOrder) {
    QStringDecoder decoder(byteOrder, QStringDecoder::Flag::Stateless);
    return decoder(data);
}

/// Old browsers offer HTML as UTF-16 without saying so. Markup is mostly ASCII, so its zero bytes
/// give the byte order away.
QString decodeHtml(const QByteArray &data) {
    if (data.startsWith("\xff\xfe"))
        return decodeUtf16(data.mid(2), QStringDecoder::Utf16LE);
    if (data.startsWith("\xfe\xff"))
        return decodeUtf16(data.mid(2), QStringDecoder::Utf16BE);
    if (data.size() >= 2 && data.size() % 2 == 0) {
        if (data[0] != 0 && data[1] == 0)
            return decodeUtf16(data, QStringDecoder::Utf16LE);
        if (data[0] == 0 && data[1] != 0)
            return decodeUtf16(data, QStringDecoder::Utf16BE);
    }
    return QString::fromUtf8(data);
}

bool isLatin1(const QString &text) {
    return std::all_of(text.begin(), text.end(),
                       [](QChar character) { return character.unicode() < 0x100; });
}

} // namespace

std::optional<PasteboardType> FlavourNames::typeOf(const QByteArray &name) {
    const Name *known = find(name);
    if (!known)
        known = find(withoutParameters(name));
    return known ? std::optional(known->type) : std::nullopt;
}

bool FlavourNames::holdsData(const QByteArray &name) {
    static constexpr const char *others[] = {"TARGETS", "MULTIPLE", "TIMESTAMP", "SAVE_TARGETS",
                                             "DELETE"};
    return !name.isEmpty() && std::none_of(std::begin(others), std::end(others),
                                           [&](const char *other) { return name == other; });
}

std::optional<QString> FlavourNames::text(const PasteboardItem &item, PasteboardType type) {
    const PasteboardRepresentation *best = nullptr;
    const Name *rank =
        std::end(names); // one with parameters that the table does not list comes last
    for (const PasteboardRepresentation &representation : item) {
        if (typeOf(representation.name) != type)
            continue;
        const Name *known = find(representation.name);
        if (!best || (known && known < rank))
            best = &representation;
        if (known && known < rank)
            rank = known;
    }
    return best ? std::optional(decodedText(*best, type)) : std::nullopt;
}

QString FlavourNames::decodedText(const PasteboardRepresentation &representation,
                                  PasteboardType type) {
    QByteArray data = representation.data;
    if (type == PasteboardType::Html)
        return decodeHtml(data);
    // Some owners count the end mark of their C string in.
    while (data.endsWith('\0'))
        data.chop(1);
    if (representation.encoding == "STRING")
        return QString::fromLatin1(data);
    return QString::fromUtf8(data);
}

PasteboardItem FlavourNames::representations(PasteboardType type, const QByteArray &data) {
    PasteboardItem item;
    const auto offer = [&](const QByteArray &name, const QByteArray &encoding) {
        item.append({name, encoding, data});
    };
    switch (type) {
    case PasteboardType::String: {
        const QByteArray utf8String = "UTF8_STRING";
        offer("text/plain;charset=utf-8", "text/plain;charset=utf-8");
        offer(utf8String, utf8String);
        offer("TEXT", utf8String);
        offer("text/plain", "text/plain");
        const QString text = QString::fromUtf8(data);
        if (isLatin1(text))
            item.append({"STRING", "STRING", text.toLatin1()});
        break;
    }
    case PasteboardType::Rtf:
        for (const char *name : {"text/rtf", "application/rtf", "text/richtext"})
            offer(name, name);
        break;
    case PasteboardType::Url:
    case PasteboardType::FileUrl:
        offer("text/uri-list", "text/uri-list");
        break;
    case PasteboardType::Html:
        offer("text/html", "text/html");
        break;
    case PasteboardType::TabularText:
        offer("text/tab-separated-values", "text/tab-separated-values");
        break;
    case PasteboardType::Rtfd:
        break; // nothing on X11 takes it
    }
    return item;
}

ClipboardContents FlavourNames::contents(qint64 changeCount,
                                         const std::optional<PasteboardItem> &item) {
    if (!item)
        return {changeCount, {}, {}, {}};
    return {changeCount, text(*item, PasteboardType::String), text(*item, PasteboardType::Html),
            QList<PasteboardItem>{*item}};
}
