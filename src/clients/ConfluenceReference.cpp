#include "clients/ConfluenceClient.h"

#include "clients/SiteAddress.h"
#include "model/Text.h"
#include "model/ViewMatching.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ConfluenceClient {

namespace {

/// In both patterns group 1 is the space key and group 2 the id.
const QRegularExpression &pageLinkPattern() {
    static const QRegularExpression pattern(uR"(/wiki/spaces/([^/]+)/pages/(\d+))"_s,
                                            QRegularExpression::UseUnicodePropertiesOption);
    return pattern;
}

/// The date of a blog post stands before its id as numbers of their own; the last of the run is the
/// id. The run gives nothing back, so that however long it is, the engine's stack holds it.
const QRegularExpression &blogLinkPattern() {
    static const QRegularExpression pattern(uR"(/wiki/spaces/([^/]+)/blog/(?:\d+/(?=\d))*+(\d+))"_s,
                                            QRegularExpression::UseUnicodePropertiesOption);
    return pattern;
}

/// Whether `text` can be a link to a space at all. Each of these rejects only what the patterns or
/// the URL parser would reject too, and none of them copies: both patterns hold the path, and no
/// URL holds a space or a control character.
bool mayBeSpaceLink(QStringView text) {
    // In this order: prose has a space among its first units.
    if (std::any_of(text.begin(), text.end(), [](QChar unit) { return unit <= u' '; }))
        return false;
    const qsizetype space = text.indexOf(u"/wiki/spaces/");
    return space >= 0 &&
           (text.indexOf(u"/pages/", space) >= 0 || text.indexOf(u"/blog/", space) >= 0);
}

bool isOnSite(QStringView text, const QString &baseURL) {
    const std::optional<QUrl> url = urlWithHost(upToAuthority(text).toString());
    if (!url)
        return false;
    const std::optional<SiteAddress> site = SiteAddress::parse(baseURL);
    return site && site->host == lowerCasedHost(*url);
}

} // namespace

std::optional<ConfluenceRef> extractRef(QStringView from, const QString &baseURL) {
    const QStringView text = Text::trimmedView(from);
    if (!mayBeSpaceLink(text) || !isOnSite(text, baseURL))
        return std::nullopt;
    QRegularExpressionMatch match = ViewMatching::first(pageLinkPattern(), text);
    const bool isBlog = !match.hasMatch();
    if (isBlog)
        match = ViewMatching::first(blogLinkPattern(), text);
    if (!match.hasMatch())
        return std::nullopt;
    const QString url = text.toString();
    if (!urlWithHost(url))
        return std::nullopt;
    return ConfluenceRef{match.captured(2), match.captured(1).toUpper(), isBlog, url};
}

} // namespace ConfluenceClient
