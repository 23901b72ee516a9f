#include "fuzz/PlainDetection.h"

#include "model/Text.h"

#include <QTextBoundaryFinder>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

QRegularExpression pattern(const QString &text) {
    return QRegularExpression(text, QRegularExpression::UseUnicodePropertiesOption);
}

QString hostOf(const QString &address) {
    const QUrl url(address, QUrl::StrictMode);
    return url.isValid() ? url.host(QUrl::FullyEncoded).toLower() : QString();
}

QString trimSlashes(QString text) {
    static const auto slashes = pattern(uR"(\A/+|/+\z)"_s);
    return text.remove(slashes);
}

void appendAll(QStringList &all, const QRegularExpression &wanted, const QString &text, int group) {
    for (auto matches = wanted.globalMatch(text); matches.hasNext();)
        all.append(matches.next().captured(group));
}

std::optional<JiraRef> jira(const QString &text, const QString &site) {
    static const auto link = pattern(
        uR"(\Ahttps?://([^/\s]+)/browse/([A-Za-z][A-Za-z0-9]*-[0-9]+)(?:[/?#][^\s]*)?\z)"_s);
    static const auto comment = pattern(uR"(focusedCommentId=(\d+))"_s);
    const auto match = link.match(text);
    const QString host = hostOf(trimSlashes(site));
    if (!match.hasMatch() || host.isEmpty() || match.captured(1).toLower() != host)
        return std::nullopt;
    JiraRef ref{match.captured(2).toUpper(), {}, {}};
    ref.url = trimSlashes(site) + u"/browse/"_s + ref.key;
    const auto focused = comment.match(text);
    if (focused.hasMatch()) {
        ref.commentId = focused.captured(1);
        ref.url += u"?focusedCommentId="_s + *ref.commentId;
    }
    return ref;
}

std::optional<ConfluenceRef> confluence(const QString &text, const QString &site) {
    static const auto page = pattern(uR"(/wiki/spaces/([^/]+)/pages/(\d+))"_s);
    static const auto blog = pattern(uR"(/wiki/spaces/([^/]+)/blog/(?:\d+/)*(\d+))"_s);
    const QString host = hostOf(text);
    if (host.isEmpty() || host != hostOf(trimSlashes(site)))
        return std::nullopt;
    if (const auto match = page.match(text); match.hasMatch())
        return ConfluenceRef{match.captured(2), match.captured(1).toUpper(), false, text};
    if (const auto match = blog.match(text); match.hasMatch())
        return ConfluenceRef{match.captured(2), match.captured(1).toUpper(), true, text};
    return std::nullopt;
}

/// Whether `text` starts with exactly `count` hexadecimal digits as the user counts characters.
bool startsWithHexDigits(const QString &text, int count) {
    static const auto digit = pattern(u"\\A[0-9A-Fa-f]\\z"_s);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (int i = 0; i <= count; ++i) {
        const qsizetype start = finder.position();
        const qsizetype end = finder.toNextBoundary();
        const QString character = end < 0 ? QString() : text.sliced(start, end - start);
        if (digit.match(character).hasMatch() != (i < count))
            return false;
    }
    return true;
}

std::optional<AccountRef> account(const QString &text, const QString &base) {
    static const auto bare = pattern(u"\\A[0-9A-Fa-f]{24}\\z"_s);
    const qsizetype found = text.indexOf(base);
    QString id;
    if (bare.match(text).hasMatch())
        id = text;
    else if (found >= 0 && startsWithHexDigits(text.mid(found + base.size()), 24))
        id = text.mid(found + base.size(), 24);
    if (id.isEmpty())
        return std::nullopt;
    return AccountRef{id.toLower(), base + id.toLower()};
}

} // namespace

QStringList PlainDetection::candidates(const QString &plain, const QString &html) {
    static const auto link = pattern(uR"(https?://[^\s"'<>)\]]+)"_s);
    static const auto anchor = pattern(uR"(href=["']([^"']+)["'])"_s);
    QStringList all{Text::trimmed(plain)};
    appendAll(all, link, plain, 0);
    appendAll(all, anchor, html, 1);
    appendAll(all, link, html, 0);
    all.removeAll(QString());
    all.removeDuplicates();
    return all;
}

std::optional<Enrichment::DetectedRef> PlainDetection::detect(const QString &plain,
                                                              const QString &html,
                                                              const QString &site,
                                                              const QString &base) {
    const QStringList all = candidates(plain, html);
    for (const QString &candidate : all) {
        if (const auto found = jira(Text::trimmed(candidate), site))
            return *found;
        if (const auto found = confluence(Text::trimmed(candidate), site))
            return *found;
    }
    for (const QString &candidate : all) {
        const auto found = account(Text::trimmed(candidate), base);
        if (found && !base.isEmpty())
            return *found;
    }
    return std::nullopt;
}
