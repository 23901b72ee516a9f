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

QString issueUrl(const QString &text, const QString &baseURL = site) {
    const auto ref = JiraClient::extractRef(text, baseURL);
    return ref ? ref->url : u"none"_s;
}

} // namespace

class TestClientsReferences : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void findsJiraLinks() {
        const QString found = site + u"/browse/ABC-12"_s;
        for (const QString &text :
             {site + u"/browse/abc-12"_s, u"http://Team.EXAMPLE.net/browse/ABC-12"_s,
              u"\u00A0\r\n"_s + found + u"\t\n"_s, found + u"/"_s, found + u"#x"_s,
              found + u"?a=b&c"_s, found + u"?focusedCommentId=x"_s,
              found + u"?FocusedCommentId=7"_s})
            QCOMPARE(text + u' ' + issueUrl(text), text + u' ' + found);
        const QString comment = found + u"?focusedCommentId=77"_s;
        QCOMPARE(issueUrl(comment + u"&page=2#comment-77"_s), comment);
        for (const QString &place : {u"#"_s, u"?page=2&"_s, u"/x?a#b="_s})
            QCOMPARE(place + issueUrl(found + place + u"focusedCommentId=77"_s), place + comment);
        QCOMPARE(issueUrl(site + u"/browse/a1b2-3"_s), site + u"/browse/A1B2-3"_s);
        QCOMPARE(issueUrl(comment + u"&focusedCommentId=2"_s), comment);
        QCOMPARE(JiraClient::extractRef(comment, site)->key, u"ABC-12"_s);
        QCOMPARE(JiraClient::extractRef(comment, site)->commentId, u"77"_s);

        for (const QString &text :
             {u"HTTPS"_s + found.sliced(5), found + u"x"_s, found + u","_s, found + u"?a\nb"_s,
              found + u"?a\u00A0b"_s, site + u"/browse/A_B-12"_s, site + u"/browse/1AB-12"_s,
              site + u"/browse/ABC-\u0661"_s, u"https://other.example.net/browse/ABC-12"_s,
              site + u".evil.example/browse/ABC-12"_s,
              u"https://me@team.example.net/browse/ABC-12"_s, site + u":443/browse/ABC-12"_s,
              u"see "_s + found, site + u"/jira/browse/ABC-12"_s, QString()})
            QCOMPARE(text + u' ' + issueUrl(text), text + u" none"_s);
    }

    void findsConfluenceLinks() {
        const QString eng = u"/wiki/spaces/ENG/"_s;
        const QList<std::pair<QString, QString>> cases{
            {site + u"/wiki/spaces/eng/pages/123456/Release+Plan"_s, u"Page ENG 123456"_s},
            {site + eng + u"blog/2024/05/17/98765/launch-notes"_s, u"Blog ENG 98765"_s},
            {site + eng + u"blog/2024/05/17/98765"_s, u"Blog ENG 98765"_s},
            {site + eng + u"blog/98765?x=1"_s, u"Blog ENG 98765"_s},
            {site + eng + u"blog/2024/05/17/launch-notes"_s, u"Blog ENG 17"_s},
            {site + eng + u"blog/"_s + u"7/"_s.repeated(1'000'000) + u"98/x"_s, u"Blog ENG 98"_s},
            {site + u"/wiki/spaces/A/blog/1?x=/wiki/spaces/B/pages/2"_s, u"Page B 2"_s},
            {u" \n"_s + site + u"/wiki/spaces/~a%c3/pages/1\u2028"_s, u"Page ~A%C3 1"_s},
            {u"HTTP://me@TEAM.example.net:8080/x"_s + eng + u"pages/1"_s, u"Page ENG 1"_s},
        };
        const QString baseURL = u"/"_s + site + u"//"_s;
        for (const auto &[text, found] : cases) {
            const auto ref = ConfluenceClient::extractRef(text, baseURL);
            QVERIFY2(ref, qPrintable(text.left(100)));
            QCOMPARE(QStringList({ref->typeLabel(), ref->spaceKey, ref->pageId}).join(u' '), found);
            QCOMPARE(ref->url, text.trimmed());
        }
        for (const QString &text :
             {site + eng + u"pages/edit-v2/123456"_s, site + u"/wiki/spaces//pages/1"_s,
              u"https://other.example.net"_s + eng + u"pages/1"_s,
              u"https://other.net//team.example.net"_s + eng + u"pages/1"_s,
              u"team.example.net"_s + eng + u"pages/1"_s, site + eng + u"pages/1/Release Plan"_s,
              site + eng + u"pages/1/{x}"_s})
            QVERIFY2(!ConfluenceClient::extractRef(text, baseURL), qPrintable(text));
    }

    void asksForASite() {
        const QString link = u"/browse/A-1"_s;
        const QString page = site + u"/wiki/spaces/A/pages/1"_s;
        for (const QString &baseURL :
             {site, site + u"/jira"_s, u"https://Team.Example.NET"_s, site + u":8443"_s}) {
            QCOMPARE(issueUrl(site + link, baseURL + u"//"_s), QString(baseURL + link));
            QVERIFY(ConfluenceClient::extractRef(page, baseURL));
        }
        // A name in letters beyond ASCII is that in the form in which it travels.
        const QString travelling = u"https://xn--bcher-kva.example"_s;
        for (const QString &baseURL : {u"https://B\u00FCcher.example"_s, travelling}) {
            for (const QString &host : {u"https://b\u00FCCHER.example"_s, travelling,
                                        u"https://XN--Bcher-kva.example"_s}) {
                QCOMPARE(host + issueUrl(host + link, baseURL), QString(host + baseURL + link));
                QVERIFY(ConfluenceClient::extractRef(host + u"/wiki/spaces/A/pages/1"_s, baseURL));
            }
            for (const QString &host :
                 {u"https://b\u00FCcher.example:443"_s, u"https://me@b\u00FCcher.example"_s,
                  u"https://bu\u0308cher.example.net"_s})
                QCOMPARE(host + issueUrl(host + link, baseURL), host + u"none"_s);
        }
        for (const QString &baseURL :
             {QString(), u"team.example.net"_s, u" "_s + site, u"https://other.example.net"_s}) {
            QCOMPARE(issueUrl(site + link, baseURL), u"none"_s);
            QVERIFY(!ConfluenceClient::extractRef(page, baseURL));
        }
    }

    void findsRecordIds() {
        const QString accent = u"\u0301"_s;
        for (const QString &text :
             {digits, u"  "_s + digits.toUpper() + u"\n"_s, base + digits.toUpper() + u"?tab=x"_s,
              base + digits + u"g"_s, base + digits + u"\U0001F41E"_s,
              u"see "_s + base + digits + u" there"_s, base + digits + u"e"_s + accent}) {
            const auto ref = AccountClient::extractRef(text, base);
            QVERIFY2(ref, qPrintable(text));
            QCOMPARE(ref->id, digits);
            QCOMPARE(ref->url, QString(base + digits));
            QVERIFY2(!AccountClient::extractRef(text, QString()),
                     "ID links are off without a base");
        }
        for (const QString &text :
             {digits.chopped(1), digits + u"0"_s, base + digits + u"0"_s,
              base + digits.chopped(1) + u"g"_s, base.toUpper() + digits,
              base + u"x "_s + base + digits, digits.chopped(1) + u"\uFF11"_s, digits + accent,
              base + digits + accent, base + digits + u"\U00010376"_s,
              base + digits.chopped(2) + u"a"_s + accent + u"b"_s, QString()})
            QVERIFY2(!AccountClient::extractRef(text, base), qPrintable(text));

        QCOMPARE(AccountClient::normalizedBase(u" https://h/A?b#c\n"_s), u"https://h/A?b#c/"_s);
        for (const QString &setting : {QString(), u"app.example.com/records/"_s,
                                       u"//app.example.com/"_s, u"https://"_s, u"https://h/a b/"_s})
            QCOMPARE(AccountClient::normalizedBase(setting), QString());
    }

    void rejectsLongTextCheaply() {
        const auto filled = [](const QString &start, const QString &piece) {
            return QString(start + piece.repeated(10'000'000 / piece.size()));
        };
        for (const QString &text :
             {filled({}, u"lorem ipsum "_s), filled(site + u"/browse/ABC-1"_s, u"A"_s),
              filled(site + u"/wiki/spaces/ENG/pages/1 "_s, u"lorem ipsum "_s),
              filled(site, u"/wiki/spaces/A/blog/x"_s), filled(site + u"/wiki/spaces/"_s, u"x"_s),
              filled({}, base.chopped(1))}) {
            QElapsedTimer timer;
            timer.start();
            QVERIFY(!JiraClient::extractRef(text, site));
            QVERIFY(!ConfluenceClient::extractRef(text, site));
            QVERIFY(!AccountClient::extractRef(text, base));
            // Each takes well under a second; anything quadratic takes hours.
            QVERIFY2(timer.elapsed() < 20'000, "rejecting is not linear");
        }
    }
};

QTEST_GUILESS_MAIN(TestClientsReferences)
#include "test_clients_references.moc"
