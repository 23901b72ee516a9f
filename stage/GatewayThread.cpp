#include "stage/GatewayThread.h"

GatewayThread::GatewayThread(const QStringList &names, const QHash<QString, GatewayReply> &replies)
    : m_gateway(new LoopbackGateway(names)) {
    m_gateway->replies = replies;
    m_gateway->moveToThread(&m_thread);
    m_thread.start();
}

GatewayThread::~GatewayThread() {
    m_gateway->deleteLater(); // at the latest when the thread ends
    m_thread.quit();
    m_thread.wait();
}

void GatewayThread::run(const std::function<void(LoopbackGateway &)> &work) {
    QMetaObject::invokeMethod(
        m_gateway, [&] { work(*m_gateway); }, Qt::BlockingQueuedConnection);
}
