#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QLocalSocket>

#include <deque>
#include <functional>

/// A connection to sway's command socket. Served by the event loop.
class SwayConnection {
public:
    /// The kinds of messages, by the numbers that they have on the wire.
    enum class Request : quint32 { RunCommand = 0, Subscribe = 2, GetConfiguration = 9 };
    enum class Event : quint32 { Workspace = 0, Binding = 5 };
    using Reply = std::function<void(const QJsonValue &)>;

    /// Connects to the socket of SWAYSOCK. `happened` gets what has been subscribed to.
    explicit SwayConnection(std::function<void(Event, const QJsonObject &)> happened);
    ~SwayConnection();

    /// Why it does not serve, or no longer; empty while it does.
    QString problem() const;

    /// Sends a request; `reply` gets the answer, in a later turn of the event loop, unless the
    /// connection breaks before. Answers come in the order of the requests.
    void send(Request request, const QByteArray &payload, Reply reply);

    /// Waits until sway has answered everything, half a second at most. It does not read any more
    /// what a client sent before it hung up.
    void finish();

private:
    void receive();
    void handle(quint32 type, const QByteArray &payload);

    QLocalSocket m_socket;
    QByteArray m_received;
    std::deque<Reply> m_replies;
    std::function<void(Event, const QJsonObject &)> m_happened;
};
