#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QSslServer>
#include <QString>
#include <QTemporaryDir>

/// One request as it came.
struct GatewayRequest {
    int connection = 0; ///< counts from 1
    QString host;
    QString target;                        ///< path and query
    QHash<QByteArray, QByteArray> headers; ///< names in lower case
};

/// What to answer.
struct GatewayReply {
    enum class Manner {
        Whole,
        Truncated, ///< announces the whole body, sends half of it and closes
        Stalled,   ///< announces the whole body, sends half of it and no more
        Drip,      ///< sends a byte at a time without coming to an end
        Babble,    ///< answers with what is no HTTP
        Silence,   ///< never answers
        Close,     ///< closes without an answer
        Reset,     ///< announces the whole body, sends half of it and resets the connection
    };

    int status = 200;
    QByteArray body = {};
    QByteArray location = {};
    QByteArray headers = {}; ///< further lines of the head, each with its end
    Manner manner = Manner::Whole;
    int delay = 0; ///< ms before the answer
};

/// An HTTPS server on loopback that stands for the site and the gateway at once; a certificate made
/// for this run names both hosts. Keeps connections alive. Answers while the event loop runs.
class LoopbackGateway : public QSslServer {
    Q_OBJECT

public:
    /// `names` are the host names of the certificate.
    explicit LoopbackGateway(const QStringList &names = {QStringLiteral("api.atlassian.com"),
                                                         QStringLiteral("h.example")});

    /// Empty when it listens; else what went wrong.
    QString problem() const { return m_problem; }
    quint16 port() const { return serverPort(); }
    /// The file of the certificate to trust.
    QString certificate() const { return m_folder.filePath(QStringLiteral("cert.pem")); }

    /// Answers by target; 404 for others.
    QHash<QString, GatewayReply> replies;
    QList<GatewayRequest> requests;
    int connections = 0;
    /// The milliseconds that each answer took, oldest first, from the end of its request until the
    /// socket had taken it, without its delay.
    QList<double> answering;

private:
    void makeCertificate(const QStringList &names);
    void accept();
    void read(QSslSocket *socket, int connection, QByteArray &unread);
    void answer(QSslSocket *socket, const GatewayReply &reply);
    static void breakOff(QSslSocket *socket, GatewayReply::Manner manner);

    QTemporaryDir m_folder;
    QString m_problem;
};
