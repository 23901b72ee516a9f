#include "platform/portal/PortalBackends.h"

#include "platform/portal/RemoteDesktopKeys.h"

#include <utility>

PortalBackends::PortalBackends(std::shared_ptr<Dispatch> dispatch,
                               std::shared_ptr<SecretStore> secrets)
    : m_dispatch(std::move(dispatch)), m_secrets(std::move(secrets)) {}

std::shared_ptr<PortalConnection> PortalBackends::connection() {
    if (!m_connection)
        m_connection = std::make_shared<PortalConnection>();
    return m_connection;
}

Result<std::shared_ptr<PasteKeys>>
PortalBackends::remoteDesktop(std::shared_ptr<HeldKeys> heldKeys,
                              std::function<bool()> vIsInItsPlace) {
    if (const QString problem = PortalConnection::problem(); !problem.isEmpty())
        return Result<std::shared_ptr<PasteKeys>>::failure(problem);
    return std::shared_ptr<PasteKeys>(std::make_shared<RemoteDesktopKeys>(RemoteDesktopKeys::Tools{
        connection(), m_secrets, m_dispatch, std::move(heldKeys), std::move(vIsInItsPlace)}));
}
