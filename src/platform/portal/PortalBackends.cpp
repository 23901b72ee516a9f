#include "platform/portal/PortalBackends.h"

#include "platform/linux/LateHotkeys.h"
#include "platform/portal/PortalHotkeys.h"
#include "platform/portal/RemoteDesktopKeys.h"

#include <utility>

namespace {

/// The release may not be told, so a press may be a new one sooner than elsewhere. Longer than the
/// time for which a key is held before it repeats.
constexpr std::chrono::milliseconds longestRepeatDelay{1000};

} // namespace

PortalBackends::PortalBackends(std::shared_ptr<Dispatch> dispatch,
                               std::shared_ptr<SecretStore> secrets)
    : m_dispatch(std::move(dispatch)),
      m_secrets(std::move(secrets)),
      m_hold(std::make_shared<HotkeyHold>(longestRepeatDelay)) {}

const Result<std::shared_ptr<PortalConnection>> &PortalBackends::connection() {
    if (!m_connection) {
        const QString problem = PortalConnection::problem();
        m_connection = problem.isEmpty()
                           ? std::make_shared<PortalConnection>()
                           : Result<std::shared_ptr<PortalConnection>>::failure(problem);
    }
    return *m_connection;
}

Result<std::shared_ptr<Hotkeys>>
PortalBackends::globalShortcuts(std::shared_ptr<Defaults> defaults,
                                std::optional<Hotkeys::DesktopsChoice> untold,
                                Otherwise otherwise) {
    if (!connection())
        return Result<std::shared_ptr<Hotkeys>>::failure(connection().error());
    const PortalHotkeys::Tools tools{*connection(), std::move(defaults), m_hold, m_probe,
                                     std::move(untold)};
    const auto ask = [tools, otherwise = std::move(otherwise)](const LateHotkeys::Found &found) {
        const auto answered = [tools, otherwise, found](const QVariant &, const QString &problem) {
            found(problem.isEmpty() ? std::make_shared<PortalHotkeys>(tools) : otherwise(problem));
        };
        tools.portal->property(PortalHotkeys::interfaceName(), QStringLiteral("version"), answered);
    };
    return std::shared_ptr<Hotkeys>(std::make_shared<LateHotkeys>(
        [ask, dispatch = m_dispatch](const LateHotkeys::Found &found) {
            dispatch->toMain([ask, found] { ask(found); });
        }));
}

Result<std::shared_ptr<PasteKeys>>
PortalBackends::remoteDesktop(std::shared_ptr<HeldKeys> heldKeys,
                              std::function<bool()> vIsInItsPlace) {
    if (!connection())
        return Result<std::shared_ptr<PasteKeys>>::failure(connection().error());
    return std::shared_ptr<PasteKeys>(std::make_shared<RemoteDesktopKeys>(RemoteDesktopKeys::Tools{
        *connection(), m_secrets, m_dispatch, std::move(heldKeys), std::move(vIsInItsPlace)}));
}
