#pragma once

#include "stage/LoopbackGateway.h"

#include <QThread>

#include <functional>

/// A LoopbackGateway on a thread of its own, for a program whose own thread does not always run an
/// event loop. It answers from the constructor to the destructor.
class GatewayThread {
public:
    /// `names` as LoopbackGateway takes them; `replies` answers by target.
    GatewayThread(const QStringList &names, const QHash<QString, GatewayReply> &replies);
    ~GatewayThread();
    GatewayThread(const GatewayThread &) = delete;
    GatewayThread &operator=(const GatewayThread &) = delete;

    /// The gateway. What it collects may be read only while no request is under way.
    const LoopbackGateway &get() const { return *m_gateway; }

    /// Does something with the gateway on its thread and waits for it.
    void run(const std::function<void(LoopbackGateway &)> &work);

private:
    QThread m_thread;
    LoopbackGateway *m_gateway; ///< lives on the thread and ends with it
};
