#pragma once

#include <QByteArray>
#include <QSslServer>
#include <QSslSocket>
#include <QtEndian>

#include <memory>

/// An HTTPS server that speaks HTTP/2 and nothing else. Answers each request with the headers of
/// `status` and the first half of a body, then breaks off.
class Http2Server : public QSslServer {
public:
    /// What comes after half of the body: a frame of `type` with `payload`, and the end of the
    /// connection if it `closes`.
    struct End {
        quint8 type = 0;
        QByteArray payload = {};
        bool closes = false;
    };
    static constexpr quint8 data = 0, headers = 1, resetStream = 3, settings = 4, goAway = 7;

    /// A number of a frame's payload.
    static QByteArray number(quint32 value) {
        QByteArray bytes(4, '\0');
        qToBigEndian(value, bytes.data());
        return bytes;
    }

    Http2Server(QSslConfiguration configuration, bool isFound, const End &end)
        : m_isFound(isFound), m_end(end) {
        configuration.setAllowedNextProtocols({QSslConfiguration::ALPNProtocolHTTP2});
        setSslConfiguration(configuration);
        connect(this, &QTcpServer::pendingConnectionAvailable, this, [this] {
            auto *socket = qobject_cast<QSslSocket *>(nextPendingConnection());
            socket->write(frame(settings, 0, {}, 0));
            auto unread = std::make_shared<QByteArray>();
            connect(socket, &QSslSocket::readyRead, this,
                    [this, socket, unread] { read(*socket, *unread); });
        });
        listen(QHostAddress::LocalHost);
    }

    int requests = 0;

private:
    static QByteArray frame(quint8 type, char flags, const QByteArray &payload, quint32 stream) {
        QByteArray head = number(static_cast<quint32>(payload.size())).sliced(1);
        head.append(static_cast<char>(type));
        return head + flags + number(stream) + payload;
    }

    void read(QSslSocket &socket, QByteArray &unread) {
        static const QByteArray preface = "PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n";
        unread += socket.readAll();
        if (unread.startsWith(preface))
            unread.remove(0, preface.size());
        constexpr qsizetype headSize = 9;
        while (unread.size() >= headSize && !preface.startsWith(unread.first(headSize))) {
            const auto size = qFromBigEndian<quint32>(unread.constData()) >> 8;
            if (unread.size() < headSize + size)
                return;
            const auto type = static_cast<quint8>(unread.at(3));
            const auto stream = qFromBigEndian<quint32>(unread.constData() + 5);
            unread.remove(0, headSize + size);
            if (type == headers)
                answer(socket, stream);
        }
    }

    void answer(QSslSocket &socket, quint32 stream) {
        ++requests;
        // Header fields by their places in the protocol's own table: ":status: 200" or 404, and
        // "content-length" with the value 4.
        const QByteArray fields = (m_isFound ? QByteArray("\x88") : QByteArray("\x8d")) +
                                  QByteArray::fromRawData("\x0f\x0d\x01"
                                                          "4",
                                                          4);
        socket.write(frame(headers, 4, fields, stream) + frame(data, 0, "{}", stream));
        const bool isOfConnection = m_end.type == goAway;
        if (m_end.type != data)
            socket.write(frame(m_end.type, 0, m_end.payload, isOfConnection ? 0 : stream));
        if (m_end.closes)
            socket.disconnectFromHost();
    }

    bool m_isFound;
    End m_end;
};
