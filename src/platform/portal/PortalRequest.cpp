#include "platform/portal/PortalRequest.h"

#include <QTimer>

#include <utility>

namespace {
const QString requestInterface = QStringLiteral("org.freedesktop.portal.Request");
} // namespace

PortalRequest::PortalRequest(std::shared_ptr<PortalConnection> portal, const Question &question,
                             Done done)
    : m_portal(std::move(portal)),
      m_handle(m_portal->newHandle(QStringLiteral("request"))),
      m_done(std::move(done)) {
    // Before the call, since the answer may come at once.
    m_portal->listen(m_handle.path, requestInterface, QStringLiteral("Response"), this,
                     SLOT(responded(uint, QVariantMap)));
    connect(m_portal.get(), &PortalConnection::lost, this, [this] {
        answer({Answer::Code::Failed, {}, QStringLiteral("the desktop's portal has gone")});
    });
    QVariantMap options = question.options;
    options[QStringLiteral("handle_token")] = m_handle.token;
    m_portal->call(question.interface, question.method, question.arguments + QVariantList{options},
                   [self = QPointer(this)](const QDBusMessage &reply) {
                       if (self && reply.type() == QDBusMessage::ErrorMessage)
                           self->answer({Answer::Code::Failed, {}, reply.errorMessage()});
                   });
    if (question.limit)
        QTimer::singleShot(*question.limit, this, [this] {
            answer({Answer::Code::Silent, {}, {}});
        });
}

PortalRequest::~PortalRequest() {
    if (m_done)
        m_portal->tell(m_handle.path, requestInterface, QStringLiteral("Close"));
}

void PortalRequest::responded(uint code, const QVariantMap &results) {
    constexpr uint given = 0;
    constexpr uint cancelled = 1;
    answer({code == given       ? Answer::Code::Given
            : code == cancelled ? Answer::Code::Cancelled
                                : Answer::Code::Ended,
            results,
            {}});
}

void PortalRequest::answer(const Answer &answer) {
    if (!m_done)
        return;
    if (answer.code == Answer::Code::Silent)
        m_portal->tell(m_handle.path, requestInterface, QStringLiteral("Close"));
    const auto done = std::exchange(m_done, nullptr); // it may let go of this object
    done(answer);
}
