#pragma once

#include "model/Result.h"
#include "platform/Dispatch.h"
#include "platform/PasteKeys.h"
#include "platform/SecretStore.h"
#include "platform/linux/HeldKeys.h"

#include <memory>

class PortalConnection;

/// What the desktop's portal offers; the reason where there is no portal. What a portal that is
/// there offers in fact is found out later, without waiting for it. Main thread.
class PortalBackends {
public:
    PortalBackends(std::shared_ptr<Dispatch> dispatch, std::shared_ptr<SecretStore> secrets);

    /// `heldKeys` tells when the user's keys are up, `vIsInItsPlace` (may be empty) whether the key
    /// of V types it in each of the user's layouts that have the letter.
    Result<std::shared_ptr<PasteKeys>> remoteDesktop(std::shared_ptr<HeldKeys> heldKeys,
                                                     std::function<bool()> vIsInItsPlace);

private:
    std::shared_ptr<PortalConnection> connection();

    std::shared_ptr<Dispatch> m_dispatch;
    std::shared_ptr<SecretStore> m_secrets;
    std::shared_ptr<PortalConnection> m_connection;
};
