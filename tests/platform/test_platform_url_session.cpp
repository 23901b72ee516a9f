#include "stage/LoopbackGateway.h"
#include "stage/RedirectedUrlSession.h"
#include "stage/StageProcess.h"

#include <QElapsedTimer>
#include <QTest>

#include <atomic>

using namespace std::chrono_literals;

namespace {

const QUrl url("https://h.example/a?b=1");

/// A session and the gateway it is led to.
struct Scene {
    LoopbackGateway gateway;
    RedirectedUrlSession session{gateway.port(), gateway.certificate()};

    /// Sends a request and waits for its end, in vain if there is none.
    std::optional<UrlResponse> load(const UrlRequest &request) { return load(request, session); }

    std::optional<UrlResponse> load(const UrlRequest &request, UrlSession &over) {
        const auto cell = std::make_shared<std::optional<UrlResponse>>();
        const auto done = std::make_shared<std::atomic<bool>>(false);
        over.start(request, [cell, done](const UrlResponse &response) {
            *cell = response;
            *done = true;
        });
        waitFor([done] { return done->load(); }, 30000);
        return *done ? *cell : std::nullopt;
    }

    UrlRequest request(const QUrl &address = url) {
        return {address, {{"Authorization", "Basic x"}, {"Accept", "application/json"}}, 10s};
    }
};

} // namespace

class TestUrlSession : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void answersComeAsTheyAreOverOneConnection() {
        Scene scene;
        QVERIFY2(scene.gateway.problem().isEmpty(), qPrintable(scene.gateway.problem()));
        const QByteArray body(100000, 'x');
        scene.gateway.replies = {{"/a?b=1", {.body = body}}, {"/gone", {.status = 410}}};
        scene.session.prepareConnection(QUrl("https://h.example"));
        QVERIFY(waitFor([&] { return scene.gateway.connections == 1; }));
        QVERIFY(scene.gateway.requests.isEmpty());
        for (int i = 0; i < 2; ++i) {
            const auto response = scene.load(scene.request());
            QVERIFY(response);
            QCOMPARE(response->transportError, QString());
            QCOMPARE(response->httpStatus, 200);
            QCOMPARE(response->body, body);
        }
        QCOMPARE(scene.load(scene.request(QUrl("https://h.example/gone")))->httpStatus, 410);
        QCOMPARE(scene.gateway.connections, 1);
        const auto headers = scene.gateway.requests[0].headers;
        QCOMPARE(headers["authorization"], "Basic x");
        QVERIFY(!headers.contains("cookie"));
    }

    void refusedCredentialsAreNotRemembered() {
        Scene scene;
        scene.gateway.replies = {{"/a?b=1", {.status = 401, .body = "{}"}}};
        QCOMPARE(scene.load(scene.request())->httpStatus, 401);
        QCOMPARE(scene.load({url, {}, 10s})->httpStatus, 401);
        QVERIFY(!scene.gateway.requests.constLast().headers.contains("authorization"));
    }

    void redirects() {
        // The target, the status in the end (0 for none), and how many requests came, the last of
        // them with or without the credentials.
        const QList<std::tuple<QByteArray, int, int, bool>> cases{
            {"/b", 200, 2, true},
            {"https://h.example:444/b", 200, 2, false},
            {"https://api.atlassian.com/b", 302, 1, true},
            {"http://h.example/b", 0, 1, true},
            {"/a?b=1", 0, 11, true},
        };
        for (const auto &[location, status, requests, authorized] : cases) {
            Scene scene;
            scene.gateway.replies = {{"/a?b=1", {.status = 302, .location = location}},
                                     {"/b", {.body = "{}"}}};
            const auto response = scene.load(scene.request());
            QCOMPARE(location + ' ' + QByteArray::number(response->httpStatus.value_or(0)),
                     location + ' ' + QByteArray::number(status));
            QCOMPARE(response->transportError.isEmpty(), status != 0);
            QCOMPARE(scene.gateway.requests.size(), requests);
            QCOMPARE(scene.gateway.requests.constLast().headers.contains("authorization"),
                     authorized);
        }
    }

    void failures() {
        using Manner = GatewayReply::Manner;
        const QList<std::pair<GatewayReply, QString>> cases{
            {{.body = QByteArray(1000, 'x'), .manner = Manner::Truncated}, ""},
            {{.manner = Manner::Close}, ""},
            {{.manner = Manner::Silence}, "The request timed out."},
            {{.body = QByteArray(17 << 20, 'x')}, "The response is too large."},
        };
        for (const auto &[reply, error] : cases) {
            Scene scene;
            scene.gateway.replies = {{"/a?b=1", reply}};
            UrlRequest request = scene.request();
            request.idleTimeout = 1500ms;
            const auto response = scene.load(request);
            QVERIFY(response);
            QVERIFY(!response->httpStatus);
            QVERIFY(!response->transportError.isEmpty());
            QVERIFY(!response->transportError.contains("Basic"));
            QVERIFY(response->transportError.contains(error));
        }
    }

    void drippingServerIsNotIdle() {
        std::atomic<bool> ended = false;
        Scene scene;
        scene.gateway.replies = {{"/a?b=1", {.manner = GatewayReply::Manner::Drip}}};
        scene.session.start({url, {}, 1000ms}, [&](const UrlResponse &) { ended = true; });
        QTest::qWait(2500);
        QVERIFY(!ended);
    }

    void wrongCertificates() {
        const LoopbackGateway otherName({"other.example"});
        const LoopbackGateway otherIssuer({"h.example"});
        for (const LoopbackGateway *gateway : {&otherName, &otherIssuer}) {
            Scene scene;
            const LoopbackGateway &trusted = gateway == &otherName ? otherName : scene.gateway;
            RedirectedUrlSession session(gateway->port(), trusted.certificate());
            const auto response = scene.load(scene.request(), session);
            QVERIFY(response);
            QVERIFY(!response->httpStatus);
            QVERIFY(!response->transportError.isEmpty());
            QVERIFY(gateway->requests.isEmpty());
        }
    }

    void quittingEndsWhatIsUnderWay() {
        std::atomic<int> ended = 0;
        {
            Scene scene;
            scene.gateway.replies = {{"/a?b=1", {.manner = GatewayReply::Manner::Silence}}};
            scene.session.start(scene.request(), [&](const UrlResponse &) { ++ended; });
            QVERIFY(waitFor([&] { return scene.gateway.requests.size() == 1; }));
        }
        QCOMPARE(ended, 1);
    }
};

QTEST_GUILESS_MAIN(TestUrlSession)
#include "test_platform_url_session.moc"
