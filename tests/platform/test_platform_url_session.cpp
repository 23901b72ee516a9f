#include "stage/Http2Server.h"
#include "stage/LoopbackGateway.h"
#include "stage/RedirectedUrlSession.h"
#include "stage/StageProcess.h"

#include <QElapsedTimer>
#include <QTest>

#include <atomic>

using namespace std::chrono_literals;
using Manner = GatewayReply::Manner;

namespace {

const QUrl url("https://h.example/a?b=1");

/// How a request ends: its status and body, or the reason why there is none.
QString outcome(const std::optional<UrlResponse> &response) {
    if (!response)
        return "(nothing)";
    if (!response->httpStatus)
        return response->transportError;
    return QString::number(*response->httpStatus) + " " + response->body;
}

std::optional<UrlResponse> load(UrlSession &session, const UrlRequest &request) {
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
    return {address, {{"Authorization", "Basic x"}, {"Accept", "application/json"}}};
}

/// A session and the gateway it is led to.
struct Scene {
    LoopbackGateway gateway;
    RedirectedUrlSession session{gateway.port(), gateway.certificate()};

    QString load(const UrlRequest &request) { return outcome(::load(session, request)); }
};

} // namespace

class TestUrlSession : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void answersComeAsTheyAreOverOneConnection() {
        Scene scene;
        QVERIFY2(scene.gateway.problem().isEmpty(), qPrintable(scene.gateway.problem()));
        const QByteArray body(100000, 'x');
        // The body of an empty object, compressed; longer than it is unpacked.
        const QByteArray packed =
            QByteArray::fromHex("1f8b0800000000000003abae050043bfa6a302000000");
        scene.gateway.replies = {
            {"/a?b=1", {.body = body, .headers = "Set-Cookie: a=b; Path=/\r\n"}},
            {"/packed", {.body = packed, .headers = "Content-Encoding: gzip\r\n"}}};
        scene.session.prepareConnection(QUrl("https://h.example"));
        QVERIFY(waitFor([&] { return scene.gateway.connections == 1; }));
        QVERIFY(scene.gateway.requests.isEmpty());
        for (int i = 0; i < 2; ++i)
            QCOMPARE(scene.load(request()), "200 " + body);
        QCOMPARE(scene.load(request(QUrl("https://h.example/packed"))), "200 {}");
        QCOMPARE(scene.gateway.connections, 1);
        for (const GatewayRequest &one : scene.gateway.requests) {
            QCOMPARE(one.headers["authorization"], "Basic x");
            QVERIFY(!one.headers.contains("cookie"));
        }
    }

    void everyStatusIsAResponse() {
        Scene scene;
        for (const int status : {204, 400, 401, 403, 404, 407, 410, 418, 429, 500, 503, 599}) {
            scene.gateway.replies = {{"/a?b=1", {.status = status, .body = "{}"}}};
            const QString body = status == 204 ? "" : "{}";
            QCOMPARE(scene.load(request()), QString("%1 %2").arg(status).arg(body));
        }
        scene.load({url, {}});
        // Refused credentials are not remembered.
        QVERIFY(!scene.gateway.requests.constLast().headers.contains("authorization"));
    }

    void redirects_data() {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("location");
        QTest::addColumn<QString>("end");
        QTest::addColumn<int>("requests");
        QTest::addColumn<bool>("authorized"); ///< whether the last request was
        for (const int status : {301, 302, 303, 307, 308})
            QTest::addRow("%d", status) << status << QByteArray("/b") << "200 {}" << 2 << true;
        for (const int status : {200, 300, 304})
            QTest::addRow("%d", status)
                << status << QByteArray("/b")
                << QString::number(status) + (status == 304 ? " " : " moved") << 1 << true;
        const QString insecure = "The server redirected to an address that is not secure.";
        QTest::newRow("nowhere") << 302 << QByteArray() << "302 moved" << 1 << true;
        QTest::newRow("other origin")
            << 302 << QByteArray("https://H.example:444/b") << "200 {}" << 2 << false;
        QTest::newRow("other host")
            << 302 << QByteArray("https://api.atlassian.com/b") << "302 moved" << 1 << true;
        QTest::newRow("http") << 302 << QByteArray("http://h.example/b") << insecure << 1 << true;
        QTest::newRow("file") << 302 << QByteArray("file:///etc/passwd") << insecure << 1 << true;
        QTest::newRow("circle") << 302 << QByteArray("/a?b=1")
                                << "The server redirected too many times." << 11 << true;
    }
    void redirects() {
        QFETCH(int, status);
        QFETCH(QByteArray, location);
        QFETCH(QString, end);
        Scene scene;
        scene.gateway.replies = {
            {"/a?b=1", {.status = status, .body = "moved", .location = location}},
            {"/b", {.body = "{}"}}};
        QCOMPARE(scene.load(request()), end);
        QTEST(static_cast<int>(scene.gateway.requests.size()), "requests");
        QTEST(scene.gateway.requests.constLast().headers.contains("authorization"), "authorized");
    }

    void failures_data() {
        QTest::addColumn<GatewayReply>("reply");
        QTest::addColumn<QString>("end");
        QTest::newRow("truncated")
            << GatewayReply{.body = QByteArray(1000, 'x'), .manner = Manner::Truncated}
            << "Connection closed";
        QTest::newRow("closed") << GatewayReply{.manner = Manner::Close} << "Connection closed";
        QTest::newRow("silent") << GatewayReply{.manner = Manner::Silence}
                                << "The request timed out.";
        QTest::newRow("stalled") << GatewayReply{.body = "{}", .manner = Manner::Stalled}
                                 << "The request timed out.";
        QTest::newRow("large") << GatewayReply{.body = QByteArray(17 << 20, 'x')}
                               << "The response is too large.";
    }
    void failures() {
        QFETCH(GatewayReply, reply);
        Scene scene;
        scene.gateway.replies = {{"/a?b=1", reply}};
        UrlRequest hasty = request();
        hasty.idleTimeout = 1500ms;
        QTEST(scene.load(hasty), "end");
    }

    void brokenStreams_data() {
        using Server = Http2Server;
        QTest::addColumn<bool>("found");
        QTest::addColumn<Http2Server::End>("end");
        QTest::addColumn<QString>("outcome");
        const auto number = Server::number;
        QTest::newRow("reset, no error")
            << true << Server::End{Server::resetStream, number(0)} << "The response broke off.";
        QTest::newRow("reset, internal error")
            << true << Server::End{Server::resetStream, number(2)} << "Internal server error";
        QTest::newRow("reset, security") << true << Server::End{Server::resetStream, number(12)}
                                         << "The underlying transport has properties that do not "
                                            "meet minimum security requirements";
        QTest::newRow("not found, reset")
            << false << Server::End{Server::resetStream, number(2)} << "404 {}";
        QTest::newRow("going away") << true << Server::End{Server::goAway, number(0) + number(2)}
                                    << "Internal server error";
        QTest::newRow("going away, closed")
            << true << Server::End{Server::goAway, number(1) + number(0), true}
            << "Connection closed";
        QTest::newRow("closed") << true << Server::End{Server::data, {}, true}
                                << "Connection closed";
    }
    void brokenStreams() {
        QFETCH(bool, found);
        QFETCH(Http2Server::End, end);
        const LoopbackGateway certified;
        const Http2Server server(certified.sslConfiguration(), found, end);
        RedirectedUrlSession session(server.serverPort(), certified.certificate());
        QTEST(::outcome(load(session, request())), "outcome");
        QCOMPARE(server.requests, 1);
    }

    void drippingServerIsNotIdleButEndsInTime() {
        Scene scene;
        scene.gateway.replies = {{"/a?b=1", {.manner = Manner::Drip}}};
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(scene.load({url, {}, 1000ms, 2500ms}), "The request timed out.");
        QVERIFY(timer.elapsed() > 2000);
    }

    void nothingButHttpIsOpened() {
        Scene scene;
        for (const char *address :
             {"file:///etc/hostname", "ftp://h.example/a", "data:,x", "h.example/a", ""})
            QCOMPARE(QString(address) + ": " + scene.load(request(QUrl(address))),
                     QString(address) + ": Only http and https addresses are opened.");
        QVERIFY(scene.gateway.requests.isEmpty());
    }

    void wrongCertificates() {
        const LoopbackGateway otherName({"other.example"});
        const LoopbackGateway otherIssuer({"h.example"});
        for (const LoopbackGateway *gateway : {&otherName, &otherIssuer}) {
            Scene scene;
            const LoopbackGateway &trusted = gateway == &otherName ? otherName : scene.gateway;
            RedirectedUrlSession session(gateway->port(), trusted.certificate());
            const QString reason = outcome(load(session, request()));
            QVERIFY2(reason.startsWith("SSL handshake failed"), qPrintable(reason));
            QVERIFY(gateway->requests.isEmpty());
        }
    }
};

QTEST_GUILESS_MAIN(TestUrlSession)
#include "test_platform_url_session.moc"
