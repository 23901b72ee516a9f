#include "clients/AccountClient.h"

#include "clients/SiteAddress.h"
#include "model/Text.h"
#include "storage/Settings.h"

#include <algorithm>

namespace AccountClient {

namespace {

constexpr qsizetype idLength = 24;

bool isHexDigit(QChar unit) {
    return (unit >= u'0' && unit <= u'9') || (unit >= u'A' && unit <= u'F') ||
           (unit >= u'a' && unit <= u'f');
}

/// Whether `text` starts with a hex digit to which nothing else belongs as the user sees it, such
/// as a combining accent.
bool startsWithDigit(QStringView text) {
    if (text.isEmpty() || !isHexDigit(text.front()))
        return false;
    // Two more units hold any code point, and the next one settles it.
    const QStringView start = text.first(std::min<qsizetype>(text.size(), 3));
    return Text::firstCharacters(start, 1).size() == 1;
}

std::optional<QString> idFromURL(QStringView text, const QString &base) {
    if (text.size() < base.size() + idLength)
        return std::nullopt;
    const qsizetype found = text.indexOf(base);
    if (found < 0)
        return std::nullopt;
    const QStringView rest = text.sliced(found + base.size());
    if (rest.size() < idLength || !isAccountId(rest.first(idLength)) ||
        !startsWithDigit(rest.sliced(idLength - 1)) || startsWithDigit(rest.sliced(idLength)))
        return std::nullopt;
    return rest.first(idLength).toString().toLower();
}

} // namespace

bool isAccountId(QStringView text) {
    // Hex digits never join into one user-perceived character, so counting units is enough.
    return text.size() == idLength && std::all_of(text.begin(), text.end(), isHexDigit);
}

QString normalizedBase(const QString &accountBaseURL) {
    QString base = Text::trimmed(accountBaseURL);
    const std::optional<QUrl> url = urlWithHost(base);
    if (!url || url->scheme().isEmpty())
        return {};
    if (!base.endsWith(u'/'))
        base += u'/';
    return base;
}

QString normalizedBase() {
    return normalizedBase(Settings::shared().accountBaseURL());
}

std::optional<AccountRef> extractRef(QStringView from, const QString &base) {
    if (base.isEmpty())
        return std::nullopt;
    const QStringView text = Text::trimmedView(from);
    const std::optional<QString> id =
        isAccountId(text) ? text.toString().toLower() : idFromURL(text, base);
    if (!id)
        return std::nullopt;
    return AccountRef{*id, base + *id};
}

} // namespace AccountClient
