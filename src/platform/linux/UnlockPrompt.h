#pragma once

#include <QByteArray>

#include <memory>
#include <optional>

struct _GCancellable;
struct _GDBusConnection;

/// The question of the Secret Service for the password of a locked keyring. Blocks; every wait ends
/// at once when `cancellable` does, whatever state the service is in.
class UnlockPrompt {
public:
    /// Asks for `path`, of an item or a keyring, to be unlocked. Nothing when the service fails.
    static std::optional<UnlockPrompt> forUnlocking(const char *path, _GCancellable *cancellable);

    /// Whether the user has to be asked; else it is unlocked already.
    bool isNeeded() const { return m_path != "/"; }

    /// Asks the user; false when that ended without an answer.
    bool show(_GCancellable *cancellable) const;

private:
    using Connection = std::shared_ptr<_GDBusConnection>;
    UnlockPrompt(Connection bus, QByteArray path);

    Connection m_bus;
    QByteArray m_path; ///< of the prompt, "/" for none
};
