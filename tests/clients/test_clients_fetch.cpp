#include "clients/Answers.h"

#include <QJsonDocument>
#include <QJsonObject>

class TestFetch : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void issue_data() {
        QTest::addColumn<UrlResponse>("issue");
        QTest::addColumn<std::optional<UrlResponse>>("comment");
        QTest::addColumn<QString>("result");
        QTest::addColumn<QString>("logged"); ///< after the line of the request
        const QByteArray whole = R"({"fields":{"summary":"Crash é 🐞","issuetype":{"name":"Bug"},)"
                                 R"("status":{"name":"Done"}}})";
        const QString unreadable = "Unable to parse Jira response";
        const QString code = "fetchSummary: HTTP %1 for issue/ABC-1";
        const QString cannot =
            code.arg(200) + "\nfetchSummary: 200 but couldn't parse response body";
        const QString parsed = code.arg(200) +
                               "\nfetchSummary: parsed key=ABC-1 type=Bug status=Done "
                               "summary=9 chars";
        const QString asked = parsed + "\nfetchCommentText: GET comment/77 via gateway\n"
                                       "fetchCommentText: ";
        const QString failed = asked + "failed to load comment 77";
        const QString without = "Crash é 🐞|Bug|Done|-|-";
        const std::optional<UrlResponse> none;
        const auto row = [](const char *name, const UrlResponse &issueAnswer,
                            const std::optional<UrlResponse> &commentAnswer, const QString &result,
                            const QString &logged) {
            QTest::newRow(name) << issueAnswer << commentAnswer << result << logged;
        };
        row("whole", ok(whole), none, without, parsed);
        row("no type, no status", ok(R"({"fields":{"summary":"S","issuetype":null}})"), none,
            "S|-|-|-|-",
            code.arg(200) + "\nfetchSummary: parsed key=ABC-1 type=(none) status=(none) "
                            "summary=1 chars");
        row("forged and long",
            ok(R"({"fields":{"summary":"S","issuetype":{"name":"a\r\nb"},)"
               R"("status":{"name":")" +
               QByteArray(101, 'x') + R"("}}})"),
            none, "S|a\r\nb|" + QString(101, 'x') + "|-|-",
            code.arg(200) + "\nfetchSummary: parsed key=ABC-1 type=a  b status=" +
                QString(100, 'x') + "… summary=1 chars");
        row("cut", ok(whole.left(40)), none, unreadable, cannot);
        row("no summary", ok(R"({"fields":{"summary":1}})"), none, unreadable, cannot);
        row("no text", ok("{\"fields\":{\"summary\":\"\xff\"}}"), none, unreadable, cannot);
        row("too deep", ok(QByteArray(100000, '[')), none, unreadable, cannot);
        row("gone", status(410), none, "Jira returned HTTP 410", code.arg(410));
        row("broken", broken, none, brokenText, "fetchSummary: network error Connection refused");
        row("no HTTP", noHttp, none, noHttpText, "fetchSummary: no HTTP response");
        row("comment", ok(whole),
            ok(R"({"author":{"displayName":" María José G"},"body":{"content":[)"
               R"({"type":"text","text":" Looks"},{"type":"text","text":"good "}]}})"),
            "Crash é 🐞|Bug|Done|Looks good|María", asked + "10 chars, author=María");
        row("blank comment", ok(whole), ok(R"({"author":{"displayName":" "},"body":{}})"), without,
            asked + "0 chars, author=(none)");
        row("long author", ok(whole),
            ok(R"({"author":{"displayName":")" + QByteArray(999, 'y') + R"("}})"),
            without.chopped(1) + QString(999, 'y'),
            asked + "0 chars, author=" + QString(100, 'y') + "…");
        row("no comment", ok(whole), status(404), without, failed);
        row("broken comment", ok(whole), broken, without, failed);
        row("unreadable comment", ok(whole), ok("x"), without, failed);
    }
    void issue() {
        QFETCH(UrlResponse, issue);
        QFETCH(std::optional<UrlResponse>, comment);
        QFETCH(QString, logged);
        FakePlatform platform;
        platform.urlSession->answers = {{issueUrl, issue}, {commentUrl, comment.value_or(noHttp)}};
        QTEST(fetchIssue(ann, comment ? std::optional<QString>("77") : std::nullopt), "result");
        QCOMPARE(verifyDiscreet(platform).join('\n'),
                 "fetchSummary: GET issue/ABC-1 via gateway\n" + logged);
        QVERIFY(platform.urlSession->prepared.isEmpty());
    }

    void page_data() {
        QTest::addColumn<UrlResponse>("answer");
        QTest::addColumn<QString>("result");
        QTest::addColumn<QString>("logged");
        const QString code = "\nfetchPage: HTTP %1 for page/12";
        QTest::newRow("title") << ok(R"({"title":"Plän"})") << "Plän"
                               << code.arg(200) + "\nfetchPage: parsed page/12 title=4 chars";
        QTest::newRow("no title") << ok("{}") << "Unable to parse Confluence response"
                                  << code.arg(200) + "\nfetchPage: 200 but couldn't parse title";
        QTest::newRow("gone") << status(404) << "Confluence returned HTTP 404" << code.arg(404);
        QTest::newRow("broken") << broken << brokenText
                                << "\nfetchPage: network error Connection refused";
        QTest::newRow("no HTTP") << noHttp << noHttpText << "";
    }
    void page() {
        QFETCH(UrlResponse, answer);
        QFETCH(QString, logged);
        FakePlatform platform;
        platform.urlSession->answers = {{pageUrl, answer}};
        QTEST(fetchPage(), "result");
        QCOMPARE(verifyDiscreet(platform).join('\n'),
                 "fetchPage: GET confluence page/12 via gateway" + logged);
    }

    void documentText() {
        const auto doc = [](const QByteArray &children) {
            return R"({"type":"doc","content":[)" + children + "]}";
        };
        const auto text = [](const QByteArray &t) {
            return QByteArray(R"({"type":"text","text":"%"})").replace('%', t);
        };
        QByteArray deep = text("x");
        for (int level = 1; level <= 100; ++level)
            deep = doc(text("a") + "," + deep);
        const QList<std::pair<QByteArray, QString>> cases{
            {doc(doc(text("A")) + R"(,{"type":"paragraph"},)" + doc(text("B "))), "A  B "},
            {doc(R"({"type":"text","text":1,"content":[{"type":"text","text":"c"}]},"s",null)"),
             "c  "},
            {deep, QString("a ").repeated(99) + " "}, // what is too deep counts for nothing
        };
        for (const auto &[json, expected] : cases)
            QCOMPARE(JiraClient::adfPlainText(QJsonDocument::fromJson(json).object(), 0), expected);
    }
};

QTEST_GUILESS_MAIN(TestFetch)
#include "test_clients_fetch.moc"
