#include "platform/wayland/SwayConnection.h"

#include <QDeadlineTimer>
#include <QJsonArray>
#include <QJsonDocument>

#include <cstring>
#include <utility>

namespace {

const QByteArray magic = "i3-ipc";

/// After the magic: the length of what follows and its type, both in the machine's own byte order.
struct Lengths {
    quint32 payload;
    quint32 type;
};
const qsizetype headerSize = magic.size() + qsizetype(sizeof(Lengths));

constexpr quint32 eventBit = 0x80000000;

/// Nothing that sway says is longer.
constexpr quint32 largestPayload = 16 * 1024 * 1024;

constexpr std::chrono::milliseconds longestFinish{500};

} // namespace

SwayConnection::SwayConnection(std::function<void(Event, const QJsonObject &)> happened)
    : m_happened(std::move(happened)) {
    QObject::connect(&m_socket, &QLocalSocket::readyRead, &m_socket, [this] { receive(); });
    const QString path = qEnvironmentVariable("SWAYSOCK");
    if (!path.isEmpty())
        m_socket.connectToServer(path);
}

SwayConnection::~SwayConnection() {
    m_socket.disconnect();
}

QString SwayConnection::problem() const {
    if (m_socket.state() == QLocalSocket::ConnectedState)
        return {};
    return qEnvironmentVariableIsEmpty("SWAYSOCK") ? QStringLiteral("SWAYSOCK is not set")
                                                   : QStringLiteral("sway does not answer");
}

void SwayConnection::send(Request request, const QByteArray &payload, Reply reply) {
    const Lengths lengths{static_cast<quint32>(payload.size()), static_cast<quint32>(request)};
    QByteArray header(sizeof lengths, Qt::Uninitialized);
    std::memcpy(header.data(), &lengths, sizeof lengths);
    m_socket.write(magic + header + payload);
    m_replies.push_back(std::move(reply));
}

void SwayConnection::finish() {
    const QDeadlineTimer deadline(longestFinish);
    while (!m_replies.empty() && m_socket.waitForReadyRead(int(deadline.remainingTime()))) {
    }
}

void SwayConnection::receive() {
    m_received += m_socket.readAll();
    while (m_received.size() >= headerSize) {
        Lengths lengths{};
        std::memcpy(&lengths, m_received.constData() + magic.size(), sizeof lengths);
        if (!m_received.startsWith(magic) || lengths.payload > largestPayload) {
            m_socket.abort(); // whoever this is, it is not sway
            return;
        }
        if (m_received.size() < headerSize + lengths.payload)
            return;
        const QByteArray payload = m_received.mid(headerSize, lengths.payload);
        m_received.remove(0, headerSize + lengths.payload);
        handle(lengths.type, payload);
    }
}

void SwayConnection::handle(quint32 type, const QByteArray &payload) {
    const QJsonDocument document = QJsonDocument::fromJson(payload);
    if (type & eventBit) {
        m_happened(Event(type & ~eventBit), document.object());
        return;
    }
    if (m_replies.empty())
        return;
    const Reply reply = std::move(m_replies.front());
    m_replies.pop_front();
    reply(document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object()));
}
