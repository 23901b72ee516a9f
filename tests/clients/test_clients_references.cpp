#include "clients/AccountClient.h"
#include "clients/ConfluenceClient.h"
#include "clients/JiraClient.h"

#include <QElapsedTimer>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString site = u"https://team.example.net"_s;
const QString base = u"https://app.example.com/records/"_s;
const QString digits = u"507f1f77bcf86cd799439011"_s;

} // namespace

class TestClientsReferences : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void findsJiraLinks_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("url");
        QTest::addColumn<QString>("comment");

        const auto found = [](const char *name, const QString &text, const QString &comment = {}) {
            const QString query = comment.isEmpty() ? QString() : u"?focusedCommentId="_s + comment;
            QTest::newRow(name) << text << QString(site + u"/browse/ABC-12"_s + query) << comment;
        };
        const auto rejected = [](const char *name, const QString &text) {
            QTest::newRow(name) << text << QString() << QString();
        };
        found("key in lower case", site + u"/browse/abc-12"_s);
        found("http instead of https", u"http://team.example.net/browse/ABC-12"_s);
        found("host in other letter case", u"https://Team.EXAMPLE.net/browse/ABC-12"_s);
        found("white space around", u"\u00A0\r\n"_s + site + u"/browse/ABC-12\t\n"_s);
        found("slash after the key", site + u"/browse/ABC-12/"_s);
        found("fragment", site + u"/browse/ABC-12#x"_s);
        found("other query items", site + u"/browse/ABC-12?a=b&c"_s);
        found("focused comment",
              site + u"/browse/ABC-12?focusedCommentId=10044&page=2#comment-10044"_s, u"10044"_s);
        found("focused comment in the fragment", site + u"/browse/ABC-12#focusedCommentId=77"_s,
              u"77"_s);
        found("first of two focused comments",
              site + u"/browse/ABC-12?focusedCommentId=1&focusedCommentId=2"_s, u"1"_s);
        found("comment id without digits", site + u"/browse/ABC-12?focusedCommentId=x"_s);
        found("comment parameter in other letter case",
              site + u"/browse/ABC-12?FocusedCommentId=7"_s);

        rejected("letter after the number", site + u"/browse/ABC-12x"_s);
        rejected("comma after the link", site + u"/browse/ABC-12,"_s);
        rejected("white space within", site + u"/browse/ABC-12?a\nb"_s);
        rejected("no-break space within", site + u"/browse/ABC-12?a\u00A0b"_s);
        rejected("underscore in the key", site + u"/browse/A_B-12"_s);
        rejected("digit first in the key", site + u"/browse/1AB-12"_s);
        rejected("digits of another script", site + u"/browse/ABC-\u0661"_s);
        rejected("another host", u"https://other.example.net/browse/ABC-12"_s);
        rejected("host that only starts alike", site + u".evil.example/browse/ABC-12"_s);
        rejected("user name", u"https://me@team.example.net/browse/ABC-12"_s);
        rejected("port", site + u":443/browse/ABC-12"_s);
        rejected("text before the link", u"see "_s + site + u"/browse/ABC-12"_s);
        rejected("scheme in upper case", u"HTTPS://team.example.net/browse/ABC-12"_s);
        rejected("path before browse", site + u"/jira/browse/ABC-12"_s);
        rejected("empty", u""_s);
    }

    void findsJiraLinks() {
        QFETCH(QString, text);
        QFETCH(QString, url);
        QFETCH(QString, comment);
        const auto ref = JiraClient::extractRef(text, site);
        QCOMPARE(ref ? ref->url : QString(), url);
        if (ref) {
            QCOMPARE(ref->key, u"ABC-12"_s);
            QCOMPARE(ref->commentId, comment.isEmpty() ? std::nullopt : std::optional(comment));
        }
    }

    void findsConfluenceLinks_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("found"); // type, space key and id, or empty for none

        const auto row = [](const char *name, const QString &text, const QString &found = {}) {
            QTest::newRow(name) << text << found;
        };
        row("page", site + u"/wiki/spaces/eng/pages/123456/Release+Plan"_s, u"Page ENG 123456"_s);
        row("blog post", site + u"/wiki/spaces/ENG/blog/2024/05/17/98765/launch-notes"_s,
            u"Blog ENG 98765"_s);
        row("blog post without a date", site + u"/wiki/spaces/ENG/blog/98765"_s,
            u"Blog ENG 98765"_s);
        row("date without a post", site + u"/wiki/spaces/ENG/blog/2024/05/17/launch-notes"_s,
            u"Blog ENG 17"_s);
        row("blog post after a million numbers",
            site + u"/wiki/spaces/ENG/blog/"_s + u"7/"_s.repeated(1'000'000) + u"98765/x"_s,
            u"Blog ENG 98765"_s);
        row("page and blog post in one", site + u"/wiki/spaces/A/blog/1?x=/wiki/spaces/B/pages/2"_s,
            u"Page B 2"_s);
        row("personal and encoded space", site + u"/wiki/spaces/~a%c3/pages/1"_s,
            u"Page ~A%C3 1"_s);
        row("white space around", u" \n"_s + site + u"/wiki/spaces/ENG/pages/1\u2028"_s,
            u"Page ENG 1"_s);
        row("host in other letter case", u"https://TEAM.example.net/wiki/spaces/ENG/pages/1"_s,
            u"Page ENG 1"_s);
        row("other scheme, port and user",
            u"HTTP://me@team.example.net:8080/x/wiki/spaces/ENG/pages/1"_s, u"Page ENG 1"_s);
        row("no scheme", u"//team.example.net/wiki/spaces/ENG/pages/1"_s, u"Page ENG 1"_s);

        row("page editor", site + u"/wiki/spaces/ENG/pages/edit-v2/123456"_s);
        row("no space key", site + u"/wiki/spaces//pages/1"_s);
        row("another host", u"https://other.example.net/wiki/spaces/ENG/pages/1"_s);
        row("the host only in the path",
            u"https://other.net//team.example.net/wiki/spaces/E/pages/1"_s);
        row("host without slashes", u"team.example.net/wiki/spaces/ENG/pages/1"_s);
        row("text before the link", u"see "_s + site + u"/wiki/spaces/ENG/pages/1"_s);
        row("space within", site + u"/wiki/spaces/ENG/pages/1/Release Plan"_s);
        row("line feed within", site + u"/wiki/spaces/ENG/pages/1\n/x"_s);
        row("character no URL holds", site + u"/wiki/spaces/ENG/pages/1/{x}"_s);
        row("broken percent escape", site + u"/wiki/spaces/ENG/pages/1/%zz"_s);
        row("empty", u""_s);
    }

    void findsConfluenceLinks() {
        QFETCH(QString, path);
        const auto ref = ConfluenceClient::extractRef(path, u"/"_s + site + u"//"_s);
        QTEST(ref ? QStringList({ref->typeLabel(), ref->spaceKey, ref->pageId}).join(u' ')
                  : QString(),
              "found");
        if (ref)
            QCOMPARE(ref->url, path.trimmed());
    }

    void asksForASite_data() {
        QTest::addColumn<QString>("baseURL");
        QTest::addColumn<QString>("jiraURL");

        QTest::newRow("final slashes")
            << QString(site + u"//"_s) << QString(site + u"/browse/A-1"_s);
        QTest::newRow("path") << QString(site + u"/jira/"_s)
                              << QString(site + u"/jira/browse/A-1"_s);
        QTest::newRow("host in other letter case")
            << u"https://Team.Example.NET"_s << u"https://Team.Example.NET/browse/A-1"_s;
        QTest::newRow("port") << QString(site + u":8443"_s)
                              << QString(site + u":8443/browse/A-1"_s);
        QTest::newRow("empty") << QString() << QString();
        QTest::newRow("no scheme") << u"team.example.net"_s << QString();
        QTest::newRow("white space is not trimmed") << QString(u" "_s + site) << QString();
        QTest::newRow("white space within") << QString(site + u"/a b"_s) << QString();
        QTest::newRow("another host") << u"https://other.example.net"_s << QString();
    }

    void asksForASite() {
        QFETCH(QString, baseURL);
        QFETCH(QString, jiraURL);
        const auto jira = JiraClient::extractRef(site + u"/browse/A-1"_s, baseURL);
        QCOMPARE(jira ? jira->url : QString(), jiraURL);
        const auto page = ConfluenceClient::extractRef(site + u"/wiki/spaces/A/pages/1"_s, baseURL);
        QCOMPARE(page.has_value(), !jiraURL.isEmpty());
    }

    void normalizesBase_data() {
        QTest::addColumn<QString>("setting");
        QTest::addColumn<QString>("expected");

        QTest::newRow("empty") << QString() << QString();
        QTest::newRow("white space around, no final slash")
            << u" https://h/A?b#c\n"_s << u"https://h/A?b#c/"_s;
        QTest::newRow("final slash") << base << base;
        QTest::newRow("no scheme") << u"app.example.com/records/"_s << QString();
        QTest::newRow("no host") << u"https://"_s << QString();
        QTest::newRow("white space within") << u"https://h/a b/"_s << QString();
    }

    void normalizesBase() {
        QFETCH(QString, setting);
        QTEST(AccountClient::normalizedBase(setting), "expected");
    }

    void findsRecordIds_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("found");

        const auto row = [](const char *name, const QString &text, bool found) {
            QTest::newRow(name) << text << found;
        };
        row("bare id", digits, true);
        row("bare id in upper case, white space around", u"  "_s + digits.toUpper() + u"\n"_s,
            true);
        row("after the base", base + digits, true);
        row("query after the id", base + digits.toUpper() + u"?tab=history"_s, true);
        row("path after the id", base + digits + u"/more"_s, true);
        row("letter beyond f after the id", base + digits + u"g"_s, true);
        row("emoji after the id", base + digits + u"\U0001F41E"_s, true);
        row("base within a text", u"see "_s + base + digits + u" there"_s, true);
        row("23 digits", digits.chopped(1), false);
        row("25 digits", digits + u"0"_s, false);
        row("25 digits after the base", base + digits + u"0"_s, false);
        row("23 digits and another letter after the base", base + digits.chopped(1) + u"g"_s,
            false);
        row("base in other letter case", base.toUpper() + digits, false);
        row("first base without an id, second with one", base + u"x "_s + base + digits, false);
        row("fullwidth digit", digits.chopped(1) + u"\uFF11"_s, false);
        row("accent on a bare id", digits + u"\u0301"_s, false);
        row("accent on the last digit after the base", base + digits + u"\u0301"_s, false);
        row("accent beyond the BMP on the last digit", base + digits + u"\U00010376"_s, false);
        row("letter with an accent after the id", base + digits + u"e\u0301"_s, true);
        row("accent on an inner digit", base + digits.chopped(2) + u"a\u0301b"_s, false);
        row("empty", QString(), false);
    }

    void findsRecordIds() {
        QFETCH(QString, text);
        QFETCH(bool, found);
        const auto ref = AccountClient::extractRef(text, base);
        QCOMPARE(ref.has_value(), found);
        if (ref) {
            QCOMPARE(ref->id, digits);
            QCOMPARE(ref->url, QString(base + digits));
        }
        QVERIFY2(!AccountClient::extractRef(text, QString()), "ID links are off without a base");
    }

    void rejectsLongTextCheaply_data() {
        QTest::addColumn<QString>("text");

        const auto filled = [](const QString &start, const QString &piece) {
            return QString(start + piece.repeated(10'000'000 / piece.size()));
        };
        QTest::newRow("prose") << filled({}, u"lorem ipsum "_s);
        QTest::newRow("one word") << filled({}, u"x"_s);
        QTest::newRow("link without an end") << filled(site + u"/browse/ABC-1"_s, u"A"_s);
        QTest::newRow("host without an end") << filled(u"https://"_s, u"x"_s);
        QTest::newRow("prose after a page link")
            << filled(site + u"/wiki/spaces/ENG/pages/1 "_s, u"lorem ipsum "_s);
        QTest::newRow("spaces without pages") << filled(site, u"/wiki/spaces/A/blog/x"_s);
        QTest::newRow("space key without an end") << filled(site + u"/wiki/spaces/"_s, u"x"_s);
        QTest::newRow("almost the base") << filled({}, base.chopped(1));
    }

    void rejectsLongTextCheaply() {
        QFETCH(QString, text);
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!JiraClient::extractRef(text, site));
        QVERIFY(!ConfluenceClient::extractRef(text, site));
        QVERIFY(!AccountClient::extractRef(text, base));
        // Each takes well under a second; anything quadratic takes hours.
        QVERIFY2(timer.elapsed() < 20'000, "rejecting is not linear");
    }
};

QTEST_GUILESS_MAIN(TestClientsReferences)
#include "test_clients_references.moc"
