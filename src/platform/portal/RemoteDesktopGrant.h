#pragma once

#include "platform/Dispatch.h"
#include "platform/SecretStore.h"
#include "platform/portal/PortalConnection.h"

#include <QString>

#include <memory>
#include <vector>

/// What the portal's RemoteDesktop offers, and the token that lets us use it without a question, as
/// far as both are known; the token's home is the keyring. Main thread.
class RemoteDesktopGrant : public QObject {
    Q_OBJECT

public:
    /// Asks from the next turn of the event loop on.
    RemoteDesktopGrant(std::shared_ptr<PortalConnection> portal,
                       std::shared_ptr<SecretStore> secrets, std::shared_ptr<Dispatch> dispatch);

    /// Whether the portal and the keyring have answered.
    bool isKnown() const { return m_isKnown; }
    /// Calls `then` when they have, or have taken too long; perhaps before it returns.
    void whenKnown(std::function<void()> then);

    /// Why the portal can press no keys, whatever the user says; empty when it can.
    QString problem() const { return m_problem; }
    /// Whether what the user allows is good beyond a session.
    bool givesTokens() const;
    /// Empty where there is none.
    QString token() const { return m_token; }

    /// A token is good for one session; each brings the next.
    void keep(const QString &token);
    void forget();

Q_SIGNALS:
    void changed();

private:
    void learn();
    void learnDevices();
    void learnToken();
    void learned(const QString &problem);

    std::shared_ptr<PortalConnection> m_portal;
    std::shared_ptr<SecretStore> m_secrets;
    std::shared_ptr<Dispatch> m_dispatch;
    bool m_isKnown = false;
    uint m_version = 0;
    QString m_problem;
    QString m_token;
    bool m_isStored = false; ///< the keyring holds m_token
    std::vector<std::function<void()>> m_waiting;
};
