#include "stage/LoopbackGateway.h"

#include <QElapsedTimer>
#include <QFile>
#include <QPointer>
#include <QProcess>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslSocket>
#include <QTimer>

#include <memory>

#include <sys/socket.h>

using namespace Qt::StringLiterals;

LoopbackGateway::LoopbackGateway(const QStringList &names) {
    makeCertificate(names);
    QFile key(m_folder.filePath(u"key.pem"_s));
    if (!key.open(QFile::ReadOnly)) {
        m_problem = u"openssl made no certificate: "_s + m_problem;
        return;
    }
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificateChain(QSslCertificate::fromPath(certificate()));
    configuration.setPrivateKey(QSslKey(&key, QSsl::Ec));
    configuration.setPeerVerifyMode(QSslSocket::VerifyNone);
    setSslConfiguration(configuration);
    connect(this, &QTcpServer::pendingConnectionAvailable, this, &LoopbackGateway::accept);
    if (!listen(QHostAddress::LocalHost))
        m_problem = errorString();
}

void LoopbackGateway::makeCertificate(const QStringList &names) {
    QStringList alternatives;
    for (const QString &name : names)
        alternatives.append(u"DNS:"_s + name);
    QProcess openssl;
    openssl.start(u"openssl"_s,
                  {u"req"_s, u"-x509"_s, u"-newkey"_s, u"ec"_s, u"-pkeyopt"_s,
                   u"ec_paramgen_curve:prime256v1"_s, u"-nodes"_s, u"-days"_s, u"2"_s, u"-subj"_s,
                   u"/CN=loopback"_s, u"-addext"_s, u"subjectAltName="_s + alternatives.join(u','),
                   u"-keyout"_s, m_folder.filePath(u"key.pem"_s), u"-out"_s, certificate()});
    openssl.waitForFinished();
    m_problem =
        openssl.exitCode() == 0 ? QString() : QString::fromUtf8(openssl.readAllStandardError());
}

void LoopbackGateway::accept() {
    while (auto *socket = qobject_cast<QSslSocket *>(nextPendingConnection())) {
        const int connection = ++connections;
        auto unread = std::make_shared<QByteArray>();
        connect(socket, &QSslSocket::readyRead, this,
                [this, socket, connection, unread] { read(socket, connection, *unread); });
        connect(socket, &QSslSocket::disconnected, socket, &QObject::deleteLater);
        read(socket, connection, *unread);
    }
}

void LoopbackGateway::read(QSslSocket *socket, int connection, QByteArray &unread) {
    unread += socket->readAll();
    for (qsizetype end = unread.indexOf("\r\n\r\n"); end >= 0; end = unread.indexOf("\r\n\r\n")) {
        const QList<QByteArray> lines = unread.left(end).split('\n');
        unread.remove(0, end + 4);
        GatewayRequest request{connection, {}, QString::fromUtf8(lines[0].split(' ').value(1)), {}};
        for (const QByteArray &line : lines.mid(1)) {
            const qsizetype colon = line.indexOf(':');
            request.headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
        }
        request.host = QString::fromUtf8(request.headers.value("host"));
        requests.append(request);
        const GatewayReply reply =
            replies.value(request.target, GatewayReply{.status = 404, .body = "{}"});
        QElapsedTimer asked;
        asked.start();
        QTimer::singleShot(reply.delay, Qt::PreciseTimer, socket, [this, socket, reply, asked] {
            answer(socket, reply);
            socket->flush();
            answering.append(static_cast<double>(asked.nsecsElapsed()) / 1e6 - reply.delay);
        });
    }
}

void LoopbackGateway::answer(QSslSocket *socket, const GatewayReply &reply) {
    using Manner = GatewayReply::Manner;
    if (reply.manner == Manner::Silence)
        return;
    if (reply.manner == Manner::Close) {
        socket->abort();
        return;
    }
    if (reply.manner == Manner::Babble) {
        socket->write(QByteArray("\0\xff what?\r\n", 11).repeated(100));
        socket->disconnectFromHost();
        return;
    }
    const bool isDrip = reply.manner == Manner::Drip;
    QByteArray head = "HTTP/1.1 " + QByteArray::number(reply.status) + " X\r\n";
    head += "Content-Type: application/json\r\n";
    head += "Content-Length: " + QByteArray::number(isDrip ? 1000000 : reply.body.size()) + "\r\n";
    head += reply.headers;
    if (!reply.location.isEmpty())
        head += "Location: " + reply.location + "\r\n";
    socket->write(head + "\r\n");
    if (isDrip) {
        auto *timer = new QTimer(socket);
        connect(timer, &QTimer::timeout, socket, [socket] { socket->write(" "); });
        timer->start(50);
        return;
    }
    const bool isWhole = reply.manner == Manner::Whole;
    socket->write(isWhole ? reply.body : reply.body.left(reply.body.size() / 2));
    if (!isWhole)
        breakOff(socket, reply.manner);
}

void LoopbackGateway::breakOff(QSslSocket *socket, GatewayReply::Manner manner) {
    if (manner == GatewayReply::Manner::Truncated)
        socket->disconnectFromHost();
    if (manner != GatewayReply::Manner::Reset)
        return;
    // Closed with time for nothing, the system resets the connection.
    const linger none{1, 0};
    setsockopt(static_cast<int>(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &none,
               sizeof none);
    socket->waitForBytesWritten(1000);
    socket->abort();
}
