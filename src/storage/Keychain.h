#pragma once

#include "model/AppInfo.h"
#include "platform/SecretStore.h"

#include <QString>

#include <functional>

/// The API tokens in the desktop's keyring, one item an account. Main thread only; nothing waits,
/// every answer comes in a later turn of the event loop. Nothing here logs.
namespace Keychain {

using Outcome = SecretStore::Outcome;

struct TokenAnswer {
    Outcome outcome = Outcome::Unavailable;
    QString token; ///< only with Done: without white space and line breaks at its ends
};

/// Replaces the account's token: Done when the keyring took the new one. A keyring that stays
/// locked (Refused) keeps the old one; one that took the old one out and then failed has neither.
void saveToken(const QString &token, const QString &account, std::function<void(Outcome)> done);

/// The account's token. One that is not text counts as absent. `waitsForUser` is called, at most
/// once, when the keyring is locked and the user is now asked for its password.
void loadToken(const QString &account, std::function<void(const TokenAnswer &)> done,
               std::function<void()> waitsForUser = {});

/// Removes the account's token: Done or Absent when there is none any more.
void deleteToken(const QString &account, std::function<void(Outcome)> done);

} // namespace Keychain
