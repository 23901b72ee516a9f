#include "stage/LoopbackGateway.h"
#include "stage/RedirectedUrlSession.h"
#include "stage/StageProcess.h"

#include <QElapsedTimer>
#include <QSemaphore>
#include <QTcpServer>
#include <QTest>

#include <array>
#include <atomic>

#include <dlfcn.h>
#include <netdb.h>

using Manner = GatewayReply::Manner;

namespace {

const QUrl url("https://h.example/a?b=1");

/// A name whose look-up takes until it is let go.
const char *const unknownHost = "slow.example";
std::atomic<int> lookUps = 0;
QSemaphore lookUpEnds;

/// The ends of requests, as they come on the session's thread or another.
struct Ends {
    std::atomic<int> count = 0;
    std::atomic<int> asExpected = 0;

    UrlSession::Completion expecting(const QString &text) {
        return [this, text](const UrlResponse &response) {
            const QString end = response.httpStatus
                                    ? QString::number(*response.httpStatus) + " " + response.body
                                    : response.transportError;
            asExpected += end == text;
            ++count;
        };
    }
};

/// A server on loopback that takes connections and does not say a word, or that is too busy to take
/// any more.
struct MuteServer : QTcpServer {
    explicit MuteServer(bool isFull) {
        setListenBacklogSize(isFull ? 1 : 50);
        listen(QHostAddress::LocalHost);
        if (!isFull)
            return;
        pauseAccepting();
        for (QTcpSocket &socket : fillers)
            socket.connectToHost(QHostAddress::LocalHost, serverPort());
        fillers[0].waitForConnected();
    }
    std::array<QTcpSocket, 8> fillers;
};

} // namespace

/// Stands before the system's, for the toolkit too.
extern "C" int getaddrinfo(const char *name, const char *service, const addrinfo *hints,
                           addrinfo **result) {
    if (QByteArray(name) == unknownHost) {
        ++lookUps;
        lookUpEnds.acquire();
        return EAI_AGAIN;
    }
    static const auto real = reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, __func__));
    return real(name, service, hints, result);
}

class TestUrlSessionEnd : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void oneRequestIsCancelled() {
        Ends ends;
        LoopbackGateway gateway;
        RedirectedUrlSession session(gateway.port(), gateway.certificate());
        gateway.replies = {{"/a?b=1", {.manner = Manner::Silence}}, {"/b", {.body = "{}"}}};
        const auto task =
            session.start(UrlRequest{url, {}}, ends.expecting("The request was cancelled."));
        QVERIFY(waitFor([&] { return gateway.requests.size() == 1; }));
        session.cancel(task);
        QVERIFY(waitFor([&] { return ends.asExpected == 1; }));
        session.cancel(task);
        session.start({QUrl("https://h.example/b"), {}}, ends.expecting("200 {}"));
        QVERIFY(waitFor([&] { return ends.asExpected == 2; }));
        QCOMPARE(ends.count, 2);
    }

    void quittingEndsWhatIsUnderWay_data() {
        QTest::addColumn<QString>("state");
        for (const char *state : {"nothing begun", "just begun", "no answer", "half an answer",
                                  "no connection", "no handshake", "no address"})
            QTest::newRow(state) << state;
    }
    void quittingEndsWhatIsUnderWay() {
        QFETCH(QString, state);
        LoopbackGateway gateway;
        const bool isHalf = state == "half an answer";
        gateway.replies = {
            {"/a?b=1", {.body = "{}", .manner = isHalf ? Manner::Stalled : Manner::Silence}}};
        MuteServer mute(state == "no connection");
        const bool isMute = state == "no connection" || state == "no handshake";
        auto session = state == "no address" ? std::make_unique<QtUrlSession>()
                                             : std::make_unique<RedirectedUrlSession>(
                                                   isMute ? mute.serverPort() : gateway.port(),
                                                   gateway.certificate());
        Ends ends;
        const int begun = state == "nothing begun" ? 0 : 8;
        QUrl address = url;
        if (state == "no address")
            address.setHost(unknownHost);
        for (int i = 0; i < begun; ++i)
            session->start({address, {}}, ends.expecting("Brindle is quitting."));
        if (state == "no answer" || isHalf)
            QVERIFY(waitFor([&] { return gateway.requests.size() >= 6; })); // as many connections
        else if (state == "no handshake")
            QVERIFY(waitFor([&] { return mute.hasPendingConnections(); }));
        else if (state == "no address")
            QVERIFY(waitFor([&] { return lookUps > 0; }));
        else if (state == "no connection")
            QTest::qWait(200); // nothing tells when a connection is not made

        QCOMPARE(ends.count, 0);
        QElapsedTimer timer;
        timer.start();
        session->cancelAll();
        QCOMPARE(ends.asExpected, begun); // at once, on this thread
        session->start(UrlRequest{url, {}}, ends.expecting("Brindle is quitting."));
        session->warmUp();
        session->prepareConnection(url);
        session->cancelAll();
        session.reset();
        QVERIFY2(timer.elapsed() < 2000, "quitting waits"); // a request would for 10
        QCOMPARE(ends.asExpected, begun + 1);
        QCOMPARE(ends.count, begun + 1);
        lookUpEnds.release(lookUps.exchange(0));
    }
};

QTEST_GUILESS_MAIN(TestUrlSessionEnd)
#include "test_platform_url_session_end.moc"
