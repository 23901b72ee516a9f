#pragma once

#include "model/AppInfo.h"

#include <QString>

#include <optional>

/// The API tokens in the desktop's keyring, one item an account. Nothing here logs.
namespace Keychain {

/// Replaces the account's token; true when the keyring took the new one. When it did not, the old
/// token is gone too.
bool saveToken(const QString &token, const QString &account = AppInfo::keychainAccount());

/// The account's token without white space and line breaks at its ends, or nothing.
std::optional<QString> loadToken(const QString &account = AppInfo::keychainAccount());

/// Removes the account's token if there is one.
void deleteToken(const QString &account = AppInfo::keychainAccount());

} // namespace Keychain
