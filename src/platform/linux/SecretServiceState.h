#pragma once

#include "platform/SecretStore.h"

namespace SecretServiceState {

/// Asks the Secret Service on the session bus about its default collection, over the bus alone: the
/// library would unlock it. `done` is called once, in a later turn of the event loop.
void find(std::function<void(SecretStore::State)> done);

} // namespace SecretServiceState
