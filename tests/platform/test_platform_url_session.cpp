#include "stage/LoopbackGateway.h"
#include "stage/RedirectedUrlSession.h"
#include "stage/StageProcess.h"

#include <QElapsedTimer>
#include <QTest>

#include <atomic>
#include <mutex>

using namespace std::chrono_literals;

namespace {

const QUrl url("https://h.example/a?b=1");

/// A session and the gateway it is led to.
struct Scene {
    LoopbackGateway gateway;
    RedirectedUrlSession session{gateway.port(), gateway.certificate()};

    /// Sends a request and waits for its end.
    std::optional<UrlResponse> load(const UrlRequest &request) {
        const auto cell = std::make_shared<std::optional<UrlResponse>>();
        const auto done = std::make_shared<std::atomic<bool>>(false);
        session.start(request, [cell, done](const UrlResponse &response) {
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
        QCOMPARE(headers["accept"], "application/json");
        QVERIFY(!headers.contains("cookie"));
    }

    void preparedConnectionIsTheOneUsed() {
        Scene scene;
        scene.gateway.replies = {{"/a?b=1", {.body = "{}"}}};
        scene.session.prepareConnection(QUrl("https://h.example"));
        QVERIFY(waitFor([&] { return scene.gateway.connections == 1; }));
        QVERIFY(scene.gateway.requests.isEmpty());
        QCOMPARE(scene.load(scene.request())->httpStatus, 200);
        QCOMPARE(scene.gateway.connections, 1);
    }

    void credentialsAreRefusedByOneHostAndNotRemembered() {
        Scene scene;
        scene.gateway.replies = {{"/a?b=1", {.status = 401, .body = "{}"}}};
        QCOMPARE(scene.load(scene.request())->httpStatus, 401);
        UrlRequest anonymous = scene.request();
        anonymous.headers.removeFirst();
        QCOMPARE(scene.load(anonymous)->httpStatus, 401);
        QVERIFY(!scene.gateway.requests.constLast().headers.contains("authorization"));
    }

    void redirects_data() {
        QTest::addColumn<QByteArray>("location");
        QTest::addColumn<int>("status"); // 0 for none
        QTest::addColumn<int>("requests");
        QTest::addColumn<bool>("authorized"); // the last request
        QTest::newRow("same origin") << QByteArray("/b") << 200 << 2 << true;
        QTest::newRow("another port of the host")
            << QByteArray("https://h.example:444/b") << 200 << 2 << false;
        QTest::newRow("another host")
            << QByteArray("https://api.atlassian.com/b") << 302 << 1 << true;
        QTest::newRow("not secure") << QByteArray("http://h.example/b") << 0 << 1 << true;
        QTest::newRow("without end") << QByteArray("/a?b=1") << 0 << 11 << true;
    }

    void redirects() {
        QFETCH(QByteArray, location);
        QFETCH(int, status);
        Scene scene;
        scene.gateway.replies = {{"/a?b=1", {.status = 302, .location = location}},
                                 {"/b", {.body = "{}"}}};
        const auto response = scene.load(scene.request());
        QCOMPARE(response->httpStatus.value_or(0), status);
        QCOMPARE(response->transportError.isEmpty(), status != 0);
        QTEST(static_cast<int>(scene.gateway.requests.size()), "requests");
        QTEST(scene.gateway.requests.constLast().headers.contains("authorization"), "authorized");
    }

    void failures_data() {
        QTest::addColumn<GatewayReply>("reply");
        QTest::addColumn<QString>("error"); // empty: any
        using Manner = GatewayReply::Manner;
        QTest::newRow("truncated")
            << GatewayReply{.body = QByteArray(1000, 'x'), .manner = Manner::Truncated} << "";
        QTest::newRow("closed") << GatewayReply{.manner = Manner::Close} << "";
        QTest::newRow("silent") << GatewayReply{.manner = Manner::Silence}
                                << "The request timed out.";
        QTest::newRow("too large")
            << GatewayReply{.body = QByteArray(17 << 20, 'x')} << "The response is too large.";
    }

    void failures() {
        QFETCH(GatewayReply, reply);
        QFETCH(QString, error);
        Scene scene;
        scene.gateway.replies = {{"/a?b=1", reply}};
        UrlRequest request = scene.request();
        request.idleTimeout = 1500ms;
        const auto response = scene.load(request);
        QVERIFY(response);
        QVERIFY(!response->httpStatus);
        QVERIFY(!response->transportError.isEmpty());
        QVERIFY(!response->transportError.contains("Basic"));
        if (!error.isEmpty())
            QCOMPARE(response->transportError, error);
    }

    void drippingServerIsNotIdle() {
        Scene scene;
        scene.gateway.replies = {{"/a?b=1", {.manner = GatewayReply::Manner::Drip}}};
        UrlRequest request = scene.request();
        request.idleTimeout = 1000ms;
        std::atomic<bool> ended = false;
        const auto task = scene.session.start(request, [&](const UrlResponse &) { ended = true; });
        QElapsedTimer timer;
        timer.start();
        QVERIFY(waitFor([&] { return timer.elapsed() > 2500 || ended; }));
        QVERIFY(!ended);
        scene.session.cancel(task);
        QVERIFY(waitFor([&] { return ended.load(); }));
    }

    void wrongCertificates_data() {
        QTest::addColumn<bool>("trusted");
        QTest::newRow("of another name") << true;
        QTest::newRow("of an unknown issuer") << false;
    }

    void wrongCertificates() {
        QFETCH(bool, trusted);
        LoopbackGateway gateway(trusted ? QStringList{"other.example"} : QStringList{"h.example"});
        const LoopbackGateway issuer;
        Scene scene;
        RedirectedUrlSession session(gateway.port(),
                                     trusted ? gateway.certificate() : issuer.certificate());
        std::atomic<bool> ended = false;
        UrlResponse response;
        session.start(scene.request(), [&](const UrlResponse &given) {
            response = given;
            ended = true;
        });
        QVERIFY(waitFor([&] { return ended.load(); }));
        QVERIFY(!response.httpStatus);
        QVERIFY(!response.transportError.isEmpty());
        QVERIFY(gateway.requests.isEmpty());
    }

    void quittingEndsWhatIsUnderWay() {
        std::atomic<int> ended = 0;
        LoopbackGateway gateway;
        gateway.replies = {{"/a?b=1", {.manner = GatewayReply::Manner::Silence}}};
        {
            RedirectedUrlSession session(gateway.port(), gateway.certificate());
            session.start({url, {}, 10s}, [&](const UrlResponse &) { ++ended; });
            QVERIFY(waitFor([&] { return gateway.requests.size() == 1; }));
        }
        QCOMPARE(ended, 1);
    }
};

QTEST_GUILESS_MAIN(TestUrlSession)
#include "test_platform_url_session.moc"
