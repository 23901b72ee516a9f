#include "enrichment/ReferenceDetection.h"

#include "clients/AccountClient.h"
#include "clients/ConfluenceClient.h"
#include "clients/JiraClient.h"
#include "model/Text.h"
#include "platform/Platform.h"

#include <QSet>

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

/// The pattern engine refuses a text with half a surrogate pair as a whole; a replacement character
/// in its place keeps the rest readable.
QString withoutLoneSurrogates(QString text) {
    if (QStringView(text).isValidUtf16())
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

/// Appends `texts` to `list`, leaving out what is empty or already in it.
class Gatherer {
public:
    explicit Gatherer(QList<QStringView> &list) : m_list(list) {}

    void add(QStringView text) {
        if (text.isEmpty())
            return;
        const qsizetype known = m_seen.size();
        m_seen.insert(text);
        if (m_seen.size() > known)
            m_list.append(text);
    }

    void add(const QList<QStringView> &texts) {
        for (const QStringView text : texts)
            add(text);
    }

private:
    QList<QStringView> &m_list;
    QSet<QStringView> m_seen;
};

} // namespace

QList<QStringView> Enrichment::scanMatches(const QRegularExpression &pattern, QStringView text,
                                           int group) {
    QList<QStringView> found;
    if (!pattern.isValid())
        return found;
    auto matches = pattern.globalMatch(text, 0, QRegularExpression::NormalMatch,
                                       QRegularExpression::DontCheckSubjectStringMatchOption);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        if (match.capturedStart(group) >= 0)
            found.append(match.capturedView(group));
    }
    return found;
}

Enrichment::Candidates Enrichment::candidatesIn(std::optional<QString> plain,
                                                std::optional<QString> html) {
    Candidates candidates;
    Gatherer gatherer(candidates.texts);
    if (plain) {
        candidates.plain = withoutLoneSurrogates(std::move(*plain));
        gatherer.add(Text::trimmedView(candidates.plain));
        gatherer.add(scanMatches(urlPattern(), candidates.plain, 0));
    }
    if (html) {
        candidates.html = withoutLoneSurrogates(std::move(*html));
        gatherer.add(scanMatches(hrefPattern(), candidates.html, 1));
        gatherer.add(scanMatches(urlPattern(), candidates.html, 0));
    }
    return candidates;
}

Enrichment::Candidates Enrichment::clipboardURLCandidates() {
    Pasteboard &pasteboard = *Platform::current().pasteboard;
    return candidatesIn(pasteboard.text(PasteboardType::String),
                        pasteboard.text(PasteboardType::Html));
}

std::optional<Enrichment::DetectedRef> Enrichment::detectRef(const QString &baseURL) {
    const Candidates candidates = clipboardURLCandidates();
    for (const QStringView candidate : candidates.texts) {
        if (auto ref = JiraClient::extractRef(candidate, baseURL))
            return *ref;
        if (auto ref = ConfluenceClient::extractRef(candidate, baseURL))
            return *ref;
    }
    const QString base = AccountClient::normalizedBase();
    if (base.isEmpty())
        return std::nullopt;
    for (const QStringView candidate : candidates.texts) {
        if (auto ref = AccountClient::extractRef(candidate, base))
            return *ref;
    }
    return std::nullopt;
}
