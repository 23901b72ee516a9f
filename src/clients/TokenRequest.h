#pragma once

#include "platform/Platform.h"
#include "storage/Keychain.h"

/// A request as the user, with the token that the keyring keeps.
namespace TokenRequest {

/// What is done around it, on the main thread except for `send`.
struct Steps {
    /// Makes the request. Background thread.
    std::function<void(const QString &token)> send;
    /// Instead of it: there is no token, or none that could be read.
    std::function<void(const Keychain::TokenAnswer &)> withoutToken;
    /// Whether to send, asked once the token is there; yes if empty.
    std::function<bool(const Keychain::TokenAnswer &)> maySend = {};
    /// The request is on its way.
    std::function<void()> sent = {};
    /// The keyring now waits for its password.
    std::function<void()> waitsForUser = {};
};

/// Asks for the token of `account`, then takes the steps. Main thread; returns at once.
void start(const QString &account, const Steps &steps);

/// A completion for any thread that has `finish` run on the main one.
template <class Finish>
auto onMain(Finish finish) {
    return [finish](const auto &result) {
        Platform::current().dispatch->toMain([finish, result] { finish(result); });
    };
}

} // namespace TokenRequest
