#pragma once

#include "platform/SecretStore.h"

/// The Secret Service of the desktop through libsecret. A locked keyring asks the user to unlock
/// it; the wait for the answer is bounded (see the constant in the source).
class SecretServiceStore : public SecretStore {
public:
    bool add(const QString &service, const QString &account, const QByteArray &secret) override;
    std::optional<QByteArray> copy(const QString &service, const QString &account) override;
    void remove(const QString &service, const QString &account) override;
};
