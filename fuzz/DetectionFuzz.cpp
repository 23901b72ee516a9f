#include "clients/AccountClient.h"
#include "fuzz/Fuzz.h"
#include "fuzz/PlainDetection.h"

#include <QUrl>

using namespace Qt::StringLiterals;
using Fuzz::require;

namespace {

const QString site = u"https://h.example/"_s;
const QString records = u"https://r.example/records/"_s;

/// Everything a reference says, in one line.
QString describe(const std::optional<Enrichment::DetectedRef> &ref) {
    if (!ref)
        return {};
    if (const auto *jira = std::get_if<JiraRef>(&*ref))
        return u"jira %1 %2 %3"_s.arg(jira->key, jira->commentId.value_or(u"-"_s), jira->url);
    if (const auto *page = std::get_if<ConfluenceRef>(&*ref))
        return u"%1 %2 %3 %4"_s.arg(page->typeLabel(), page->pageId, page->spaceKey, page->url);
    return u"account "_s + std::get<AccountRef>(*ref).url;
}

QString addressOf(const Enrichment::DetectedRef &ref) {
    return std::visit([](const auto &one) { return one.url; }, ref);
}

std::optional<Enrichment::DetectedRef> detect(const QString &plain, const QString &html,
                                              const QString &base) {
    return Enrichment::detectRef({0, plain, html, {}}, site, base);
}

bool isSliceOf(QStringView part, const QString &whole) {
    return part.begin() >= QStringView(whole).begin() && part.end() <= QStringView(whole).end();
}

void checkCandidates(const QString &plain, const QString &html) {
    QStringList seen;
    Enrichment::clipboardURLCandidates(plain, html, [&](QStringView candidate) {
        require(!candidate.isEmpty(), "no candidate is empty");
        require(isSliceOf(candidate, plain) || isSliceOf(candidate, html),
                "a candidate is a piece of what was copied");
        seen.append(candidate.toString());
        return false;
    });
    seen.removeDuplicates();
    require(seen == PlainDetection::candidates(plain, html), "the candidates, in their order");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Fuzz::Fields fields(data, size);
    const QString plain = Enrichment::withoutLoneSurrogates(fields.nextText());
    const QString html = Enrichment::withoutLoneSurrogates(fields.nextText());
    require(QStringView(plain).isValidUtf16() && QStringView(html).isValidUtf16(),
            "no half surrogate pairs are left");
    const QString recordBase =
        AccountClient::normalizedBase(fields.atEnd() ? records : fields.nextText());

    checkCandidates(plain, html);
    const auto found = detect(plain, html, recordBase);
    require(describe(found) == describe(PlainDetection::detect(plain, html, site, recordBase)),
            "the shortcuts find what the patterns find");
    if (found) {
        const QString address = addressOf(*found);
        require(describe(detect(address, {}, recordBase)) == describe(found),
                "the link that is pasted is the same reference when it is copied again");
        require(!std::holds_alternative<JiraRef>(*found) ||
                    QUrl(address, QUrl::StrictMode).host() == u"h.example",
                "an issue is on the site");
    }
    return 0;
}
