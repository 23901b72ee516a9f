#include "enrichment/ReferenceDetection.h"

#include "clients/AccountClient.h"
#include "clients/ConfluenceClient.h"
#include "clients/JiraClient.h"
#include "model/Text.h"
#include "model/ViewMatching.h"

#include <QList>

#include <algorithm>
#include <utility>

namespace {

const QRegularExpression &urlPattern() {
    static const QRegularExpression pattern(QStringLiteral(R"(https?://[^\s"'<>)\]]+)"),
                                            QRegularExpression::UseUnicodePropertiesOption);
    return pattern;
}

const QRegularExpression &hrefPattern() {
    static const QRegularExpression pattern(QStringLiteral(R"(href=["']([^"']+)["'])"),
                                            QRegularExpression::UseUnicodePropertiesOption);
    return pattern;
}

/// Whether any unit of `text` is half of a surrogate pair. Without an early way out of the inner
/// loop, so that the compiler can look at many units at once.
bool holdsSurrogates(QStringView text) {
    constexpr qsizetype block = 4096;
    for (qsizetype start = 0; start < text.size(); start += block) {
        const char16_t *units = text.utf16() + start;
        const qsizetype count = std::min(block, text.size() - start);
        char16_t found = 0;
        for (qsizetype i = 0; i < count; ++i)
            found |= static_cast<char16_t>((units[i] & 0xf800) == 0xd800);
        if (found)
            return true;
    }
    return false;
}

} // namespace

QString Enrichment::withoutLoneSurrogates(QString text) {
    if (!holdsSurrogates(text) || QStringView(text).isValidUtf16())
        return text;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isPair =
            text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (isPair)
            ++i;
        else if (text[i].isSurrogate())
            text[i] = QChar::ReplacementCharacter;
    }
    return text;
}

bool Enrichment::scanMatches(const QRegularExpression &pattern, QStringView text, int group,
                             const CandidateVisitor &visit) {
    if (!pattern.isValid())
        return false;
    auto matches = ViewMatching::all(pattern, text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        if (match.capturedStart(group) >= 0 && visit(match.capturedView(group)))
            return true;
    }
    return false;
}

// Each text is visited while it is still warm from being found; gathering them first and comparing
// each with all others took three times as long on a page with a hundred thousand links.
bool Enrichment::clipboardURLCandidates(QStringView plain, QStringView html,
                                        const CandidateVisitor &visit) {
    const QStringView whole = Text::trimmedView(plain);
    if ((!whole.isEmpty() && visit(whole)) || scanMatches(urlPattern(), plain, 0, visit))
        return true;
    QList<QStringView> anchors;
    const auto visitAnchor = [&](QStringView anchor) {
        anchors.append(anchor);
        return visit(anchor);
    };
    if (scanMatches(hrefPattern(), html, 1, visitAnchor))
        return true;
    // Nearly every anchor is also a link; the same place needs no second look.
    auto anchor = anchors.cbegin();
    return scanMatches(urlPattern(), html, 0, [&](QStringView link) {
        while (anchor != anchors.cend() && anchor->data() < link.data())
            ++anchor;
        const bool isAnchor = anchor != anchors.cend() && anchor->data() == link.data() &&
                              anchor->size() == link.size();
        return !isAnchor && visit(link);
    });
}

std::optional<Enrichment::DetectedRef> Enrichment::detectRef(const ClipboardContents &contents,
                                                             const QString &baseURL,
                                                             const QString &recordBase) {
    const QString plain = withoutLoneSurrogates(contents.text.value_or(QString()));
    const QString html = withoutLoneSurrogates(contents.html.value_or(QString()));
    std::optional<DetectedRef> link;
    std::optional<AccountRef> account;
    QStringView latest;
    clipboardURLCandidates(plain, html, [&](QStringView candidate) {
        if (candidate == std::exchange(latest, candidate))
            return false; // a link copied as text and as its own address, mostly
        if (auto jira = JiraClient::extractRef(candidate, baseURL))
            link = *jira;
        else if (auto page = ConfluenceClient::extractRef(candidate, baseURL))
            link = *page;
        else if (!account && !recordBase.isEmpty())
            account = AccountClient::extractRef(candidate, recordBase);
        return link.has_value();
    });
    if (!link && account)
        link = *account;
    return link;
}
