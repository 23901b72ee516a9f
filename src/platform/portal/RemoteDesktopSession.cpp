#include "platform/portal/RemoteDesktopSession.h"

namespace {

/// What is allowed stays allowed until the user takes it back.
constexpr uint untilRevoked = 2;

using Code = PortalRequest::Answer::Code;
using Kind = RemoteDesktopSession::Outcome::Kind;

RemoteDesktopSession::Outcome outcomeOf(const PortalRequest::Answer &started) {
    switch (started.code) {
    case Code::Given:
        break;
    case Code::Cancelled:
    case Code::Ended:
        return {Kind::Refused, {}, {}};
    case Code::Silent:
        return {Kind::Silent, {}, {}};
    case Code::Failed:
        return {Kind::Failed, {}, started.problem};
    }
    const uint devices = started.results.value(QStringLiteral("devices")).toUInt();
    if (!(devices & RemoteDesktopSession::keyboard))
        return {Kind::Refused, {}, {}};
    return {Kind::Open, started.results.value(QStringLiteral("restore_token")).toString(), {}};
}

} // namespace

QString RemoteDesktopSession::interfaceName() {
    return QStringLiteral("org.freedesktop.portal.RemoteDesktop");
}

RemoteDesktopSession::RemoteDesktopSession(std::shared_ptr<PortalConnection> portal)
    : m_session(std::move(portal), interfaceName()) {
    connect(&m_session, &PortalSession::ended, this, &RemoteDesktopSession::ended);
}

void RemoteDesktopSession::open(const Wish &wish, Done done) {
    m_session.create([this, wish, done = std::move(done)](const QString &problem) {
        if (problem.isEmpty())
            selectDevices(wish, done);
        else
            done({Kind::Failed, {}, problem});
    });
}

void RemoteDesktopSession::selectDevices(const Wish &wish, const Done &done) {
    QVariantMap options{{QStringLiteral("types"), keyboard}};
    if (wish.asksForToken)
        options[QStringLiteral("persist_mode")] = untilRevoked;
    if (wish.asksForToken && !wish.restoreToken.isEmpty())
        options[QStringLiteral("restore_token")] = wish.restoreToken;
    m_session.ask(
        QStringLiteral("SelectDevices"), {}, options, PortalConnection::longestAnswer,
        [this, wish, done](const PortalRequest::Answer &selected) {
            if (selected.code == Code::Given)
                start(wish, done);
            else
                done({Kind::Failed, {}, QStringLiteral("the desktop's portal offers no keyboard")});
        });
}

void RemoteDesktopSession::start(const Wish &wish, const Done &done) {
    const QString noParentWindow;
    m_session.ask(QStringLiteral("Start"), {noParentWindow}, {}, wish.limit,
                  [done](const PortalRequest::Answer &started) { done(outcomeOf(started)); });
}

/// Each waits for the one before: the portal may take two calls in whatever order.
void RemoteDesktopSession::type(const QList<Stroke> &strokes, std::function<void(bool)> done) {
    if (strokes.isEmpty()) {
        done(true);
        return;
    }
    const Stroke &stroke = strokes.first();
    m_session.call(
        stroke.isKeysym ? QStringLiteral("NotifyKeyboardKeysym")
                        : QStringLiteral("NotifyKeyboardKeycode"),
        {QVariantMap(), stroke.key, stroke.isDown ? 1U : 0U},
        [this, rest = strokes.mid(1), done = std::move(done)](const QDBusMessage &reply) {
            if (reply.type() == QDBusMessage::ErrorMessage)
                done(false);
            else
                type(rest, done);
        });
}
