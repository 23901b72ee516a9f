#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// The desktop's keyring, items keyed by service and account. Any thread; bounded in time.
class SecretStore {
public:
    virtual ~SecretStore() = default;

    /// Adds an item; false when the keyring refuses or there is none.
    virtual bool add(const QString &service, const QString &account, const QByteArray &secret) = 0;

    /// The item's bytes, or nothing.
    virtual std::optional<QByteArray> copy(const QString &service, const QString &account) = 0;

    /// Removes the item if there is one.
    virtual void remove(const QString &service, const QString &account) = 0;
};
