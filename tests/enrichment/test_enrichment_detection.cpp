#include "enrichment/ReferenceDetection.h"

#include <QTest>

namespace {

const QString site = u"https://h.example"_qs;
const QString issue = u"https://h.example/browse/ABC-1"_qs;
const QString page = u"https://h.example/wiki/spaces/ENG/pages/12/T"_qs;
const QString records = u"https://r.example/records/"_qs;
const QString record = u"507f1f77bcf86cd799439011"_qs;

QString describe(const std::optional<Enrichment::DetectedRef> &ref) {
    if (!ref)
        return u"nothing"_qs;
    if (const auto *jira = std::get_if<JiraRef>(&*ref))
        return u"jira "_qs + jira->url;
    if (const auto *confluence = std::get_if<ConfluenceRef>(&*ref))
        return u"confluence "_qs + confluence->url;
    return u"account "_qs + std::get<AccountRef>(*ref).url;
}

QString anchor(const QString &url, const QString &text) {
    return u"<p><a href=\"%1\">%2</a></p>"_qs.arg(url, text);
}

} // namespace

class TestDetection : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void detection() {
        const QString jira = u"jira "_qs + issue;
        const QString confluence = u"confluence "_qs + page;
        const QString account = u"account "_qs + records + record;
        const QString shouted = u"HTTPS"_qs + page.sliced(5);
        const auto link = [](QChar before, QChar after) { return before + issue + after; };
        const QList<std::tuple<QString, QString, QString>> cases{
            {u"ABC-1"_qs, {}, u"nothing"_qs},
            {u"see %1, thanks"_qs.arg(issue), {}, u"nothing"_qs},
            {u"see "_qs + link(u'(', u')') + u" thanks"_qs, {}, jira},
            {link(u'[', u']'), {}, jira},
            {link(u'<', u'>'), {}, jira},
            {link(u'\'', u'\''), {}, jira},
            {link(u'"', u'"'), {}, jira},
            {link(u'\0', u'\u3000') + u'x', {}, jira},
            {u"ABC-1 Fix"_qs, anchor(issue, u"ABC-1 Fix"_qs), jira},
            {u"t"_qs, u"<a href='%1\">t</a>"_qs.arg(issue), jira},
            {u"t"_qs, u"<A HREF=\"%1\">t</A>"_qs.arg(issue), jira},
            {u"t"_qs, u"<img src=\"%1\">"_qs.arg(issue) + anchor(page, u"t"_qs), confluence},
            {page, anchor(issue, u"x"_qs), confluence},
            {issue + u"?p=/wiki/spaces/ENG/pages/12"_qs, {}, jira},
            {page + u' ' + issue, {}, confluence},
            // Only in running text is the scheme in capitals none.
            {shouted, {}, u"confluence "_qs + shouted},
            {u"t"_qs, anchor(shouted, u"t"_qs), u"confluence "_qs + shouted},
            {u"see "_qs + shouted, {}, u"nothing"_qs},
            {u"HTTPS"_qs + issue.sliced(5), {}, u"nothing"_qs},
            {u" 507F1F77BCF86CD799439011\n"_qs, {}, account},
            {record, anchor(issue, u"x"_qs), jira},
            {issue + u"?r="_qs + records + record, {}, jira},
            {u"t"_qs, anchor(records + record + u"/x"_qs, u"t"_qs), account},
        };
        for (const auto &[plain, html, expected] : cases) {
            const auto found = Enrichment::detectRef({0, plain, html, {}}, site, records);
            QCOMPARE(plain + html + describe(found), plain + html + expected);
        }
    }

    void loneSurrogatesAreReplacedAndPairsKept() {
        QCOMPARE(Enrichment::withoutLoneSurrogates(u"a\xD83D \xD83D\xDC1E\xDC1E"_qs),
                 u"a\uFFFD \xD83D\xDC1E\uFFFD"_qs);
    }
};

QTEST_GUILESS_MAIN(TestDetection)
#include "test_enrichment_detection.moc"
