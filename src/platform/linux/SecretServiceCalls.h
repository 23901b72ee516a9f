#pragma once

#include "platform/SecretStore.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

struct _GCancellable;

/// Calls of the Secret Service that block until it has answered or patience ends.
namespace SecretServiceCalls {

/// An unlocked keyring answers in milliseconds, one that is only being started in seconds.
struct Limits {
    std::chrono::milliseconds forService = std::chrono::seconds(10);
    std::chrono::milliseconds forUser = std::chrono::seconds(30); ///< to unlock a locked one
};

/// How long one request may still take. Ends by itself, and at once when told to.
class Patience {
public:
    /// `asksUser` is called when the user is asked for the keyring's password.
    Patience(const Limits &limits, std::function<void()> asksUser);
    ~Patience();
    Patience(const Patience &) = delete;
    Patience &operator=(const Patience &) = delete;

    /// The user is asked now, which takes longer than a service needs.
    void awaitUser();

    /// Any thread.
    void end();

    _GCancellable *cancellable() const { return m_cancellable; }

private:
    void watch();

    Limits m_limits;
    std::function<void()> m_asksUser;
    _GCancellable *m_cancellable;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::chrono::steady_clock::time_point m_end;
    bool m_isDone = false;
    std::thread m_watch;
};

struct Item {
    QString service;
    QString account;
};

SecretStore::Outcome add(const Item &item, const QByteArray &secret, Patience &patience);
SecretStore::Answer copy(const Item &item, Patience &patience);
SecretStore::Outcome remove(const Item &item, Patience &patience);

} // namespace SecretServiceCalls
