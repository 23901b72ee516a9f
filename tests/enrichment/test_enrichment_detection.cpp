#include "enrichment/ReferenceDetection.h"
#include "fakes/FakePlatform.h"
#include "storage/Settings.h"

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
    void candidates_data() {
        QTest::addColumn<QString>("plain");
        QTest::addColumn<QString>("html");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("nothing") << QString() << QString() << QStringList();
        QTest::newRow("sentence with a link")
            << u" see https://h/a thanks\n"_qs << QString()
            << QStringList{"see https://h/a thanks", "https://h/a"};
        QTest::newRow("a link alone is offered once")
            << u"https://h/a"_qs << anchor(u"https://h/a"_qs, u"https://h/a"_qs)
            << QStringList{"https://h/a"};
        QTest::newRow("what ends a link")
            << u"(http://a) [http://b] <http://c> 'http://d' \"http://e\" http://f,"_qs << QString()
            << QStringList{"(http://a) [http://b] <http://c> 'http://d' \"http://e\" http://f,",
                           "http://a",
                           "http://b",
                           "http://c",
                           "http://d",
                           "http://e",
                           "http://f,"};
        QTest::newRow("anchors first, then other links of the source")
            << u"t"_qs << u"<img src=\"http://i\"><a href='http://x'>y</a><a href=\"rel\">z</a>"_qs
            << QStringList{"t", "http://x", "rel", "http://i"};
        QTest::newRow("either quote closes an anchor")
            << u"t"_qs << u"<a href=\"http://x'>y</a>"_qs << QStringList{"t", "http://x"};
        QTest::newRow("upper-case HREF is found as a link")
            << u"t"_qs << u"<A HREF=\"http://x\">y</A>"_qs << QStringList{"t", "http://x"};
        QTest::newRow("white space of other scripts ends a link")
            << u"http://a\u3000b"_qs << QString() << QStringList{u"http://a\u3000b"_qs, "http://a"};
        QTest::newRow("NUL hides nothing") << QString(u"x\0 http://a"_qs) << QString()
                                           << QStringList{QString(u"x\0 http://a"_qs), "http://a"};
    }

    void candidates() {
        QFETCH(QString, plain);
        QFETCH(QString, html);
        QStringList texts;
        Enrichment::clipboardURLCandidates(plain, html, [&](QStringView text) {
            if (!texts.contains(text))
                texts.append(text.toString());
            return false;
        });
        QTEST(texts, "expected");
    }

    void detection_data() {
        QTest::addColumn<QString>("plain");
        QTest::addColumn<QString>("html");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const QString &plain, const QString &html,
                            const QString &expected) {
            QTest::newRow(name) << plain << html << expected;
        };
        const QString jira = u"jira "_qs + issue;
        const QString confluence = u"confluence "_qs + page;
        const QString account = u"account "_qs + records + record;
        row("issue in a sentence", u"see %1 thanks"_qs.arg(issue), {}, jira);
        row("issue in brackets", u"(%1)"_qs.arg(issue), {}, jira);
        row("issue with a comma", u"see %1, thanks"_qs.arg(issue), {}, u"nothing"_qs);
        row("issue behind a title", u"ABC-1 Fix"_qs, anchor(issue, u"ABC-1 Fix"_qs), jira);
        row("visible page before hidden issue", page, anchor(issue, u"x"_qs), confluence);
        row("record id", u" 507F1F77BCF86CD799439011\n"_qs, {}, account);
        row("issue anywhere before a record id", record, anchor(issue, u"x"_qs), jira);
        row("issue that holds a record id", issue + u"?r="_qs + records + record, {}, jira);
        row("record link in HTML only", u"t"_qs, anchor(records + record + u"/x"_qs, u"t"_qs),
            account);
        row("bare key", u"ABC-1"_qs, {}, u"nothing"_qs);
    }

    void detection() {
        QFETCH(QString, plain);
        QFETCH(QString, html);
        FakePlatform platform;
        Settings::shared().accountBaseURL = records;
        platform.pasteboard->copyText(plain, html);
        QTEST(describe(Enrichment::detectRef(site)), "expected");
    }

    void loneSurrogatesAreReplacedAndPairsKept() {
        const QString text = u"a\xD83D \xD83D\xDC1E\xDC1E"_qs;
        QCOMPARE(Enrichment::withoutLoneSurrogates(text), u"a\uFFFD \xD83D\xDC1E\uFFFD"_qs);
        const QString whole = u"🐞 é"_qs;
        QCOMPARE(Enrichment::withoutLoneSurrogates(whole), whole);
    }

    void recordIdsAreOffWithoutABase() {
        FakePlatform platform;
        platform.pasteboard->copyText(record);
        QVERIFY(!Enrichment::detectRef(site));
    }
};

QTEST_GUILESS_MAIN(TestDetection)
#include "test_enrichment_detection.moc"
