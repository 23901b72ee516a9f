#pragma once

#include "platform/portal/PortalRequest.h"

#include <QDBusObjectPath>

/// A session that one of the portal's interfaces keeps for us. Main thread.
class PortalSession : public QObject {
    Q_OBJECT

public:
    enum class End { Closed /**< by the desktop or the user */, PortalGone };

    PortalSession(std::shared_ptr<PortalConnection> portal, const QString &interface);
    /// Closes it.
    ~PortalSession() override;

    /// Makes it; `done` gets what stood in the way, or nothing.
    void create(std::function<void(const QString &problem)> done);

    /// Asks something about the session, whose path goes before `arguments`. One question at a
    /// time; one that is open still is withdrawn. Only after create().
    void ask(const QString &method, const QVariantList &arguments, const QVariantMap &options,
             PortalRequest::Limit limit, PortalRequest::Done done);

    /// Calls a method with the session's path before `arguments`.
    void call(const QString &method, const QVariantList &arguments,
              PortalConnection::Answered answered);

    QString path() const { return m_handle.path; }

Q_SIGNALS:
    /// It has come to an end that is not of our making.
    void ended(PortalSession::End how);

private Q_SLOTS:
    void closedByDesktop();

private:
    QVariantList withPath(const QVariantList &arguments) const;

    std::shared_ptr<PortalConnection> m_portal;
    QString m_interface;
    PortalConnection::Handle m_handle;
    std::unique_ptr<PortalRequest> m_request;
    bool m_isOpen = false;
};
