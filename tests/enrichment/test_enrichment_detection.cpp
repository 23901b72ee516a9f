#include "enrichment/ReferenceDetection.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString site = u"https://h.example"_s;
const QString issue = u"https://h.example/browse/ABC-1"_s;
const QString page = u"https://h.example/wiki/spaces/ENG/pages/12/T"_s;
const QString records = u"https://r.example/records/"_s;
const QString record = u"507f1f77bcf86cd799439011"_s;

QString describe(const std::optional<Enrichment::DetectedRef> &ref) {
    if (!ref)
        return u"nothing"_s;
    if (const auto *jira = std::get_if<JiraRef>(&*ref))
        return u"jira "_s + jira->url;
    if (const auto *confluence = std::get_if<ConfluenceRef>(&*ref))
        return u"confluence "_s + confluence->url;
    return u"account "_s + std::get<AccountRef>(*ref).url;
}

QString anchor(const QString &url, const QString &text) {
    return u"<p><a href=\"%1\">%2</a></p>"_s.arg(url, text);
}

} // namespace

class TestDetection : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void detection() {
        const QString jira = u"jira "_s + issue;
        const QString confluence = u"confluence "_s + page;
        const QString account = u"account "_s + records + record;
        const QString shouted = u"HTTPS"_s + page.sliced(5);
        const auto link = [](QChar before, QChar after) { return before + issue + after; };
        const QList<std::tuple<QString, QString, QString>> cases{
            {u"ABC-1"_s, {}, u"nothing"_s},
            {u"see %1, thanks"_s.arg(issue), {}, u"nothing"_s},
            {u"see "_s + link(u'(', u')') + u" thanks"_s, {}, jira},
            {link(u'[', u']'), {}, jira},
            {link(u'<', u'>'), {}, jira},
            {link(u'\'', u'\''), {}, jira},
            {link(u'"', u'"'), {}, jira},
            {link(u'\0', u'\u3000') + u'x', {}, jira},
            {u"ABC-1 Fix"_s, anchor(issue, u"ABC-1 Fix"_s), jira},
            {u"t"_s, u"<a href='%1\">t</a>"_s.arg(issue), jira},
            {u"t"_s, u"<A HREF=\"%1\">t</A>"_s.arg(issue), jira},
            {u"t"_s, u"<img src=\"%1\">"_s.arg(issue) + anchor(page, u"t"_s), confluence},
            {page, anchor(issue, u"x"_s), confluence},
            {issue + u"?p=/wiki/spaces/ENG/pages/12"_s, {}, jira},
            {page + u' ' + issue, {}, confluence},
            // Only in running text is the scheme in capitals none.
            {shouted, {}, u"confluence "_s + shouted},
            {u"t"_s, anchor(shouted, u"t"_s), u"confluence "_s + shouted},
            {u"see "_s + shouted, {}, u"nothing"_s},
            {u"HTTPS"_s + issue.sliced(5), {}, u"nothing"_s},
            {u" 507F1F77BCF86CD799439011\n"_s, {}, account},
            {record, anchor(issue, u"x"_s), jira},
            {issue + u"?r="_s + records + record, {}, jira},
            {u"t"_s, anchor(records + record + u"/x"_s, u"t"_s), account},
        };
        for (const auto &[plain, html, expected] : cases) {
            const auto found = Enrichment::detectRef({0, plain, html, {}}, site, records);
            QCOMPARE(plain + html + describe(found), plain + html + expected);
        }
    }

    void loneSurrogatesAreReplacedAndPairsKept() {
        QCOMPARE(Enrichment::withoutLoneSurrogates(u"a\xD83D \xD83D\xDC1E\xDC1E"_s),
                 u"a\uFFFD \xD83D\xDC1E\uFFFD"_s);
    }
};

QTEST_GUILESS_MAIN(TestDetection)
#include "test_enrichment_detection.moc"
