#pragma once

#include "model/Result.h"
#include "platform/Defaults.h"
#include "platform/Dispatch.h"
#include "platform/Hotkeys.h"
#include "platform/PasteKeys.h"
#include "platform/SecretStore.h"
#include "platform/linux/HeldKeys.h"
#include "platform/linux/HotkeyHold.h"
#include "platform/linux/KeyProbe.h"

#include <memory>

class PortalConnection;

/// What the desktop's portal offers; the reason where there is no portal. What a portal that is
/// there offers in fact is found out later, without waiting for it. Main thread.
class PortalBackends {
public:
    PortalBackends(std::shared_ptr<Dispatch> dispatch, std::shared_ptr<SecretStore> secrets);

    /// Hotkeys of the portal, or what `otherwise` makes of the reason if it turns out to offer
    /// none. `untold` is what the user can do where the desktop does not tell which key it has
    /// given.
    using Otherwise = std::function<std::shared_ptr<Hotkeys>(const QString &reason)>;
    Result<std::shared_ptr<Hotkeys>> globalShortcuts(std::shared_ptr<Defaults> defaults,
                                                     std::optional<Hotkeys::DesktopsChoice> untold,
                                                     Otherwise otherwise);

    /// Whether the hotkey is held; never, while the portal gives none.
    std::shared_ptr<const HotkeyHold> hold() const { return m_hold; }
    /// Goes along with the hotkeys, if it is wanted before the event loop turns.
    std::shared_ptr<KeyProbe> probe() const { return m_probe; }

    /// `heldKeys` tells when the user's keys are up, `vIsInItsPlace` (may be empty) whether the key
    /// of V types it in each of the user's layouts that have the letter.
    Result<std::shared_ptr<PasteKeys>> remoteDesktop(std::shared_ptr<HeldKeys> heldKeys,
                                                     std::function<bool()> vIsInItsPlace);

private:
    /// The reason where there is none.
    const Result<std::shared_ptr<PortalConnection>> &connection();

    std::shared_ptr<Dispatch> m_dispatch;
    std::shared_ptr<SecretStore> m_secrets;
    std::optional<Result<std::shared_ptr<PortalConnection>>> m_connection; ///< once asked for
    std::shared_ptr<HotkeyHold> m_hold;
    std::shared_ptr<KeyProbe> m_probe = std::make_shared<KeyProbe>();
};
