#include "stage/GatewayThread.h"

GatewayThread::GatewayThread(const QStringList &names,
                             const QHash<QString, GatewayReply> &replies) {
    m_context.moveToThread(&m_thread);
    m_thread.start();
    QMetaObject::invokeMethod(
        &m_context,
        [&] {
            m_gateway = std::make_unique<LoopbackGateway>(names);
            m_gateway->replies = replies;
        },
        Qt::BlockingQueuedConnection);
}

GatewayThread::~GatewayThread() {
    QMetaObject::invokeMethod(
        &m_context, [this] { m_gateway.reset(); }, Qt::BlockingQueuedConnection);
    m_thread.quit();
    m_thread.wait();
}

void GatewayThread::run(const std::function<void(LoopbackGateway &)> &work) {
    QMetaObject::invokeMethod(
        &m_context, [&] { work(*m_gateway); }, Qt::BlockingQueuedConnection);
}
