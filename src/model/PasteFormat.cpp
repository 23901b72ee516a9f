#include "model/PasteFormat.h"

#include <algorithm>

namespace PasteFormats {

QString rawValue(PasteFormat format) {
    switch (format) {
    case PasteFormat::RichLink:
        return QStringLiteral("richLink");
    case PasteFormat::Markdown:
        return QStringLiteral("markdown");
    case PasteFormat::PlainText:
        return QStringLiteral("plainText");
    case PasteFormat::UrlOnly:
        return QStringLiteral("urlOnly");
    }
    Q_UNREACHABLE();
}

QString displayName(PasteFormat format) {
    switch (format) {
    case PasteFormat::RichLink:
        return QStringLiteral("Rich Link");
    case PasteFormat::Markdown:
        return QStringLiteral("Markdown");
    case PasteFormat::PlainText:
        return QStringLiteral("Plain Text");
    case PasteFormat::UrlOnly:
        return QStringLiteral("URL Only");
    }
    Q_UNREACHABLE();
}

std::optional<PasteFormat> fromRawValue(QStringView text) {
    const auto found = std::find_if(allCases.begin(), allCases.end(), [text](PasteFormat format) {
        return rawValue(format) == text;
    });
    if (found == allCases.end())
        return std::nullopt;
    return *found;
}

} // namespace PasteFormats
