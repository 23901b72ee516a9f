#include "clients/JiraClient.h"

#include "clients/SiteAddress.h"
#include "model/Text.h"
#include "model/ViewMatching.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace JiraClient {

namespace {

/// Group 1 is the host with any port or user name, group 2 the issue key. \z, because $ would also
/// match before a final line feed.
const QRegularExpression &issueLinkPattern() {
    static const QRegularExpression pattern(
        uR"(\Ahttps?://([^/\s]+)/browse/([A-Za-z][A-Za-z0-9]*-[0-9]+)(?:[/?#][^\s]*)?\z)"_s,
        QRegularExpression::UseUnicodePropertiesOption);
    return pattern;
}

const QRegularExpression &focusedCommentPattern() {
    static const QRegularExpression pattern(uR"(focusedCommentId=(\d+))"_s,
                                            QRegularExpression::UseUnicodePropertiesOption);
    return pattern;
}

/// Whether the path of `link` starts as that of an issue does. The pattern says the same, but to
/// start the engine for each of a hundred thousand links costs more than to find them.
bool mayBeIssueLink(QStringView link) {
    const qsizetype authority = link.startsWith(u"https://") ? 8 : 7;
    const qsizetype path = link.indexOf(u'/', authority);
    return link.startsWith(u"http") && path >= 0 && link.sliced(path).startsWith(u"/browse/");
}

std::optional<QString> focusedComment(QStringView link) {
    const QRegularExpressionMatch match = ViewMatching::first(focusedCommentPattern(), link);
    if (!match.hasMatch())
        return std::nullopt;
    return match.captured(1);
}

/// Whether `host` of a link is the site's, in either of its forms. A port or a user name is none.
bool isHostOf(const SiteAddress &site, const QString &host) {
    const bool isAscii =
        std::all_of(host.begin(), host.end(), [](QChar unit) { return unit.unicode() < 0x80; });
    return (isAscii ? host.toLower() : QString::fromLatin1(QUrl::toAce(host))) == site.host;
}

} // namespace

std::optional<JiraRef> extractRef(QStringView from, const QString &baseURL) {
    const QStringView link = Text::trimmedView(from);
    if (!mayBeIssueLink(link))
        return std::nullopt;
    const QRegularExpressionMatch match = ViewMatching::first(issueLinkPattern(), link);
    if (!match.hasMatch())
        return std::nullopt;
    const std::optional<SiteAddress> site = SiteAddress::parse(baseURL);
    if (!site || !isHostOf(*site, match.captured(1)))
        return std::nullopt;

    JiraRef ref{match.captured(2).toUpper(), {}, focusedComment(link)};
    ref.url = site->text + "/browse/"_L1 + ref.key;
    if (ref.commentId)
        ref.url += "?focusedCommentId="_L1 + *ref.commentId;
    return ref;
}

} // namespace JiraClient
