#include "clients/ConfluenceClient.h"
#include "clients/JiraClient.h"
#include "fakes/FakePlatform.h"
#include "storage/Settings.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

namespace {

const QString gateway = "https://api.atlassian.com";
const QString tenant = "https://h.example/_edge/tenant_info";
const QString issueUrl =
    gateway + "/ex/jira/c-1/rest/api/3/issue/ABC-1?fields=summary,issuetype,status";
const QString commentUrl = gateway + "/ex/jira/c-1/rest/api/3/issue/ABC-1/comment/77";
const QString pageUrl = gateway + "/ex/confluence/c-1/wiki/api/v2/pages/12";
const QString jiraProbe = gateway + "/ex/jira/c-1/rest/api/3/project/search?maxResults=1";
const QString confluenceProbe = gateway + "/ex/confluence/c-1/wiki/api/v2/pages?limit=1";
const QByteArray basic = "Basic YW5uQGguZXhhbXBsZTp0MQ=="; // ann@h.example:t1

const UrlResponse broken{std::nullopt, {}, "Connection refused"};
const UrlResponse noHttp{};

UrlResponse ok(const QByteArray &body) {
    return {200, body, {}};
}
UrlResponse status(int code) {
    return {code, "{}", {}};
}

QString orDash(const std::optional<QString> &text) {
    return text.value_or("-");
}

/// What a fetch gave, as one line.
QString describe(const JiraClient::FetchResult &result) {
    return QStringList{orDash(result.summary),       orDash(result.type),
                       orDash(result.status),        orDash(result.commentText),
                       orDash(result.commentAuthor), orDash(result.error)}
        .join('|');
}

QString describe(const JiraClient::DiscoverResult &result) {
    const QString resource = result.resource
                                 ? result.resource->cloudId + "," + result.resource->siteUrl + "," +
                                       result.resource->siteName
                                 : "-";
    return resource + "|" + orDash(result.error) + "|" +
           (result.httpStatus ? QString::number(*result.httpStatus) : "-");
}

/// Nothing that identifies the user may be anywhere but in the header.
void verifyDiscreet(const QStringList &log, const FakeUrlSession &session) {
    for (const QString &line : log)
        QVERIFY2(!line.contains("ann@") && !line.contains("t1"), qPrintable(line));
    for (const UrlRequest &request : session.requests) {
        QVERIFY(!request.url.toString().contains("ann"));
        QCOMPARE(request.idleTimeout, std::chrono::seconds(10));
        const bool isGateway = request.url.host() == "api.atlassian.com";
        QVERIFY(request.headers.contains({"Accept", "application/json"}));
        QCOMPARE(request.headers.contains({"Authorization", basic}), isGateway);
        QCOMPARE(request.headers.size(), isGateway ? 2 : 1);
    }
}

} // namespace

class TestFetch : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void issue_data() {
        QTest::addColumn<QList<UrlResponse>>("answers"); // issue, comment
        QTest::addColumn<QString>("result");
        QTest::addColumn<QStringList>("log"); // after the request lines
        const QByteArray whole = R"({"fields":{"summary":"Crash é 🐞","issuetype":{"name":"Bug"},)"
                                 R"("status":{"name":"In Progress"}}})";
        const QString get = "fetchSummary: GET issue/ABC-1 via gateway";
        const QString http200 = "fetchSummary: HTTP 200 for issue/ABC-1";
        const QString parsed = "fetchSummary: parsed key=ABC-1 type=Bug status=In Progress "
                               "summary=9 chars";
        const QString getComment = "fetchCommentText: GET comment/77 via gateway";
        const auto row = [](const char *name, const QList<UrlResponse> &answers,
                            const QString &result, const QStringList &log) {
            QTest::newRow(name) << answers << result << log;
        };
        row("issue", {ok(whole)}, "Crash é 🐞|Bug|In Progress|-|-|-", {get, http200, parsed});
        row("without type and status", {ok(R"({"fields":{"summary":"S","issuetype":null}})")},
            "S|-|-|-|-|-",
            {get, http200,
             "fetchSummary: parsed key=ABC-1 type=(none) status=(none) summary=1 chars"});
        row("not found", {status(404)}, "-|-|-|-|-|Jira returned HTTP 404",
            {get, "fetchSummary: HTTP 404 for issue/ABC-1"});
        row("transport error", {broken}, "-|-|-|-|-|Network error: Connection refused",
            {get, "fetchSummary: network error Connection refused"});
        row("no HTTP", {noHttp}, "-|-|-|-|-|No HTTP response",
            {get, "fetchSummary: no HTTP response"});
        const QStringList unreadable{get, http200,
                                     "fetchSummary: 200 but couldn't parse response body"};
        const QString unreadableResult = "-|-|-|-|-|Unable to parse Jira response";
        const QList<std::pair<const char *, QByteArray>> bad{
            {"truncated", whole.left(40)},
            {"no fields", "{}"},
            {"summary is a number", R"({"fields":{"summary":1}})"},
            {"not UTF-8", "{\"fields\":{\"summary\":\"\xff\"}}"},
            {"absurdly deep", QByteArray(100000, '[')},
        };
        for (const auto &[name, body] : bad)
            row(name, {ok(body)}, unreadableResult, unreadable);
        row("comment",
            {ok(whole), ok(R"({"author":{"displayName":" María José G"},"body":{"content":[)"
                           R"({"type":"text","text":" Looks"},{"type":"text","text":"good "}]}})")},
            "Crash é 🐞|Bug|In Progress|Looks good|María|-",
            {get, http200, parsed, getComment, "fetchCommentText: 10 chars, author=María"});
        row("empty comment by nobody",
            {ok(whole), ok(R"({"author":{"displayName":"  "},"body":{"content":[{}]}})")},
            "Crash é 🐞|Bug|In Progress|-|-|-",
            {get, http200, parsed, getComment, "fetchCommentText: 0 chars, author=(none)"});
        const QStringList failed{get, http200, parsed, getComment,
                                 "fetchCommentText: failed to load comment 77"};
        for (const auto &[name, answer] :
             QList<std::pair<const char *, UrlResponse>>{{"comment not found", status(404)},
                                                         {"comment broken", broken},
                                                         {"comment unreadable", ok("x")}})
            row(name, {ok(whole), answer}, "Crash é 🐞|Bug|In Progress|-|-|-", failed);
    }

    void issue() {
        QFETCH(QList<UrlResponse>, answers);
        FakePlatform platform;
        Settings::shared().cloudId = "c-1";
        platform.urlSession->answers = {{issueUrl, answers[0]}};
        std::optional<QString> commentId;
        if (answers.size() > 1) {
            platform.urlSession->answers.insert(commentUrl, answers[1]);
            commentId = "77";
        }
        QStringList results;
        platform.dispatch->onBackground([&] {
            JiraClient::fetchSummary("ABC-1", commentId, "https://h.example", "ann@h.example", "t1",
                                     [&](const auto &result) { results.append(describe(result)); });
        });
        QFETCH(QString, result);
        QCOMPARE(results, QStringList(result));
        platform.dispatch->drain();
        const QStringList log = platform.takeLog();
        QTEST(log, "log");
        verifyDiscreet(log, *platform.urlSession);
        QVERIFY(platform.urlSession->prepared.isEmpty());
    }

    void firstFetchDiscoversAndStoresTheCloudId() {
        FakePlatform platform;
        Settings::shared().baseURL = "https://h.example/";
        platform.urlSession->answers = {{tenant, ok(R"({"cloudId":"c-1"})")},
                                        {pageUrl, ok(R"({"title":"Plan"})")}};
        for (int fetch = 0; fetch < 2; ++fetch) {
            platform.dispatch->onBackground([&] {
                ConfluenceClient::fetchPage(
                    "12", Settings::shared().baseURL(), "ann@h.example", "t1",
                    [](const auto &result) { QCOMPARE(orDash(result.title), "Plan"); });
            });
            platform.dispatch->drain();
        }
        QCOMPARE(Settings::shared().cloudId(), "c-1");
        QCOMPARE(platform.urlSession->requests.size(), 3);
        QCOMPARE(platform.urlSession->prepared, QStringList(gateway));
        const QStringList log = platform.takeLog();
        verifyDiscreet(log, *platform.urlSession);
        QVERIFY(log.contains("discoverResource: 200, cloud ID c-1 for h.example"));
    }

    void siteEditedDuringADiscoveryKeepsItsOwnCloudId() {
        FakePlatform platform;
        Settings::shared().baseURL = "https://h.example";
        platform.urlSession->answers = {{tenant, ok(R"({"cloudId":"c-1"})")},
                                        {pageUrl, ok(R"({"title":"Plan"})")}};
        ConfluenceClient::fetchPage("12", "https://h.example", "a", "t", [](const auto &) {});
        Settings::shared().baseURL = "https://other.example";
        platform.dispatch->drain();
        QCOMPARE(Settings::shared().cloudId(), QString());
    }

    void discovery_data() {
        QTest::addColumn<QString>("site");
        QTest::addColumn<QString>("url"); // empty: no request
        QTest::addColumn<UrlResponse>("answer");
        QTest::addColumn<QString>("result");
        const auto row = [](const char *name, const UrlResponse &answer, const QString &result,
                            const QString &site = "https://h.example",
                            const QString &url = tenant) {
            QTest::newRow(name) << site << url << answer << result;
        };
        row("found", ok(R"({"cloudId":"c-1","x":1})"), "c-1,https://h.example,h.example|-|200",
            "https://h.example//");
        row("id is a number", ok(R"({"cloudId":1})"),
            "-|Couldn't read cloud ID from h.example (HTTP 200)|200");
        row("body unreadable", ok("<html>"),
            "-|Couldn't read cloud ID from h.example (HTTP 200)|200");
        row("not found", status(404), "-|Couldn't read cloud ID from h.example (HTTP 404)|404");
        row("transport error", broken, "-|Network error: Connection refused|-");
        row("no HTTP", noHttp, "-|No HTTP response|-");
        row("site is no URL", noHttp, "-|Invalid tenant URL|-", "https://h example", {});
    }

    void discovery() {
        QFETCH(QString, site);
        QFETCH(QString, url);
        QFETCH(UrlResponse, answer);
        FakePlatform platform;
        platform.urlSession->answers = {{url, answer}};
        QTEST(describe(JiraClient::discoverResource(site, "t1")), "result");
        QCOMPARE(platform.urlSession->requests.size(), url.isEmpty() ? 0 : 1);
        verifyDiscreet(platform.takeLog(), *platform.urlSession);
    }

    void probes_data() {
        QTest::addColumn<UrlResponse>("answer");
        QTest::addColumn<QString>("jira");
        QTest::addColumn<QString>("confluence");
        const auto scope = [](int code) {
            return QString(
                       "-|Token lacks read:jira-work for this site (HTTP %1). Re-mint with that "
                       "scope.|%1")
                .arg(code);
        };
        const auto rejected = [](int code) {
            return QString("Confluence token rejected (HTTP %1). Check the scope is "
                           "read:page:confluence.")
                .arg(code);
        };
        QTest::newRow("ok") << ok("not read") << "c-1,,|-|200"
                            << "ok";
        QTest::newRow("401") << status(401)
                             << "-|Token rejected (HTTP 401). Check the email + token combination."
                                "|401"
                             << rejected(401);
        QTest::newRow("403") << status(403) << scope(403) << rejected(403);
        QTest::newRow("404") << status(404) << scope(404) << rejected(404);
        QTest::newRow("402") << status(402) << "-|Gateway returned HTTP 402.|402" << rejected(402);
        QTest::newRow("transport error") << broken << "-|Network error: Connection refused|-"
                                         << "Network error: Connection refused";
        QTest::newRow("no HTTP") << noHttp << "-|No HTTP response|-"
                                 << "No HTTP response";
    }

    void probes() {
        QFETCH(UrlResponse, answer);
        FakePlatform platform;
        platform.urlSession->answers = {{jiraProbe, answer}, {confluenceProbe, answer}};
        QTEST(describe(JiraClient::probeToken("c-1", "ann@h.example", "t1")), "jira");
        const auto probe = ConfluenceClient::probeToken("c-1", "ann@h.example", "t1");
        QTEST(probe.ok ? "ok" : orDash(probe.error), "confluence");
        verifyDiscreet(platform.takeLog(), *platform.urlSession);
    }

    void whoNeverAnswersIsGivenUpAfter15Seconds() {
        FakePlatform platform;
        const auto start = platform.dispatch->now();
        QCOMPARE(describe(JiraClient::discoverResource("https://h.example", "t1")),
                 "-|Cloud ID lookup timed out|-");
        QCOMPARE(platform.dispatch->now() - start, std::chrono::seconds(15));
        QCOMPARE(describe(JiraClient::probeToken("c-1", "a", "t")), "-|Token probe timed out|-");
        QCOMPARE(orDash(ConfluenceClient::probeToken("c-1", "a", "t").error),
                 "Confluence probe timed out");
        QCOMPARE(platform.urlSession->cancelled.size(), 3);
        QVERIFY(platform.takeLog().contains("discoverResource: timed out"));
    }

    void page_data() {
        QTest::addColumn<UrlResponse>("answer");
        QTest::addColumn<QString>("result");
        QTest::addColumn<QString>("lastLog");
        QTest::newRow("title") << ok(R"({"title":" T "})") << " T |-"
                               << "fetchPage: parsed page/12 title=3 chars";
        QTest::newRow("404") << status(404) << "-|Confluence returned HTTP 404"
                             << "fetchPage: HTTP 404 for page/12";
        QTest::newRow("no title") << ok("{}") << "-|Unable to parse Confluence response"
                                  << "fetchPage: 200 but couldn't parse title";
        QTest::newRow("broken") << broken << "-|Network error: Connection refused"
                                << "fetchPage: network error Connection refused";
        QTest::newRow("no HTTP") << noHttp << "-|No HTTP response"
                                 << "fetchPage: GET confluence page/12 via gateway";
    }

    void page() {
        QFETCH(UrlResponse, answer);
        FakePlatform platform;
        Settings::shared().cloudId = "c-1";
        platform.urlSession->answers = {{pageUrl, answer}};
        QStringList results;
        ConfluenceClient::fetchPage("12", {}, "ann@h.example", "t1", [&](const auto &result) {
            results.append(orDash(result.title) + "|" + orDash(result.error));
        });
        QFETCH(QString, result);
        QCOMPARE(results, QStringList(result));
        const QStringList log = platform.takeLog();
        QTEST(log.constLast(), "lastLog");
        verifyDiscreet(log, *platform.urlSession);
    }

    void cloudIdThatMakesNoUrl() {
        FakePlatform platform;
        Settings::shared().cloudId = "c 1";
        JiraClient::fetchSummary("ABC-1", {}, {}, "a", "t", [](const auto &result) {
            QCOMPARE(orDash(result.error), "Couldn't build API URL");
        });
        QCOMPARE(describe(JiraClient::probeToken("c 1", "a", "t")), "-|Couldn't build probe URL|-");
        QVERIFY(platform.urlSession->requests.isEmpty());
    }

    void documentText_data() {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("text");
        const auto doc = [](const QByteArray &children) {
            return R"({"type":"doc","content":[)" + children + "]}";
        };
        const auto text = [](const QByteArray &t) {
            return QByteArray(R"({"type":"text","text":"%"})").replace('%', t);
        };
        QTest::newRow("one paragraph") << doc(doc(text("Looks good"))) << "Looks good";
        QTest::newRow("two paragraphs") << doc(doc(text("A")) + "," + doc(text("B"))) << "A B";
        QTest::newRow("split by a mark")
            << doc(text("Hello ") + "," + text("world")) << "Hello  world";
        QTest::newRow("mention") << doc(text("Hi") +
                                        R"(,{"type":"mention","attrs":{"text":"@x"}},)" +
                                        text("there"))
                                 << "Hi  there";
        QTest::newRow("empty paragraph")
            << doc(doc(text("x")) + R"(,{"type":"paragraph"},)" + doc(text("y"))) << "x  y";
        QTest::newRow("text that is a number")
            << QByteArray(R"([{"type":"text","text":1,"content":[{"type":"text","text":"c"}]}])")
            << "c";
        QTest::newRow("strings count for nothing") << QByteArray(R"(["a",1,null,"b"])") << "   ";
        QByteArray deep = text("101");
        for (int level = 100; level > 0; --level)
            deep = doc(text(QByteArray::number(level)) + "," + deep);
        QString kept;
        for (int level = 1; level <= 99; ++level)
            kept += QString::number(level) + ' ';
        QTest::newRow("too deep") << deep << kept + " ";
    }

    void documentText() {
        QFETCH(QByteArray, json);
        const QJsonDocument document = QJsonDocument::fromJson(json);
        const QJsonValue value =
            document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
        QTEST(JiraClient::adfPlainText(value, 0), "text");
    }
};

QTEST_GUILESS_MAIN(TestFetch)
#include "test_clients_fetch.moc"
