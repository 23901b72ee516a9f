#include "platform/portal/PortalSession.h"

#include <utility>

namespace {
const QString sessionInterface = QStringLiteral("org.freedesktop.portal.Session");
} // namespace

PortalSession::PortalSession(std::shared_ptr<PortalConnection> portal, const QString &interface)
    : m_portal(std::move(portal)),
      m_interface(interface),
      m_handle(m_portal->newHandle(QStringLiteral("session"))) {
    m_portal->listen(m_handle.path, sessionInterface, QStringLiteral("Closed"), this,
                     SLOT(closedByDesktop()));
    connect(m_portal.get(), &PortalConnection::lost, this, [this] {
        if (std::exchange(m_isOpen, false))
            Q_EMIT ended(End::PortalGone);
    });
}

PortalSession::~PortalSession() {
    m_request.reset();
    if (m_isOpen)
        m_portal->tell(m_handle.path, sessionInterface, QStringLiteral("Close"));
}

void PortalSession::closedByDesktop() {
    if (std::exchange(m_isOpen, false))
        Q_EMIT ended(End::Closed);
}

void PortalSession::create(std::function<void(const QString &problem)> done) {
    m_request = std::make_unique<PortalRequest>(
        m_portal,
        PortalRequest::Question{m_interface,
                                QStringLiteral("CreateSession"),
                                {},
                                {{QStringLiteral("session_handle_token"), m_handle.token}},
                                PortalConnection::longestAnswer},
        [this, done = std::move(done)](const PortalRequest::Answer &answer) {
            m_isOpen = answer.code == PortalRequest::Answer::Code::Given;
            done(m_isOpen ? QString()
                 : answer.problem.isEmpty()
                     ? QStringLiteral("the desktop's portal opens no session")
                     : answer.problem);
        });
}

void PortalSession::ask(const QString &method, const QVariantList &arguments,
                        const QVariantMap &options, PortalRequest::Limit limit,
                        PortalRequest::Done done) {
    // What is answered may ask the next from within its answer.
    if (m_request)
        m_request.release()->deleteLater();
    m_request = std::make_unique<PortalRequest>(
        m_portal, PortalRequest::Question{m_interface, method, withPath(arguments), options, limit},
        std::move(done));
}

void PortalSession::call(const QString &method, const QVariantList &arguments,
                         PortalConnection::Answered answered) {
    m_portal->call(
        m_interface, method, withPath(arguments),
        [self = QPointer(this), answered = std::move(answered)](const QDBusMessage &reply) {
            if (self)
                answered(reply);
        });
}

QVariantList PortalSession::withPath(const QVariantList &arguments) const {
    return QVariantList{QVariant::fromValue(QDBusObjectPath(m_handle.path))} + arguments;
}
