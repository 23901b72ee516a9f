#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

/// The desktop's keyring, items keyed by service and account. Main thread only. Nothing here waits:
/// what is asked is done in the order of asking, and every answer is a call of `done` on the main
/// thread in a later turn of its event loop. A locked keyring asks the user to unlock it.
class SecretStore {
public:
    enum class Outcome {
        Done,
        Absent,     ///< there is no such item
        Refused,    ///< the keyring stayed locked: the user would not, or did not in time
        Unavailable ///< there is no keyring, it does not answer in time or it failed
    };
    struct Answer {
        Outcome outcome = Outcome::Unavailable;
        QByteArray secret; ///< only with Done
    };

    /// Where the keyring stands, before anything is asked of it.
    enum class State {
        Ready,
        Locked,
        Unmade, ///< the first secret makes one, for which the user chooses a password
        None,   ///< nothing on this desktop keeps secrets
        Mute,   ///< something should, and has not answered within two seconds
    };

    virtual ~SecretStore() = default;

    /// Looks without asking the user for anything; `done` in a later turn of the event loop.
    virtual void findState(std::function<void(State)> done) = 0;

    /// Adds an item: Done, Refused or Unavailable.
    virtual void add(const QString &service, const QString &account, const QByteArray &secret,
                     std::function<void(Outcome)> done) = 0;

    /// The item's bytes. `waitsForUser`, if given, is called before that, at most once, when the
    /// item is locked and the user is now asked for the keyring's password.
    virtual void copy(const QString &service, const QString &account,
                      std::function<void(const Answer &)> done,
                      std::function<void()> waitsForUser = {}) = 0;

    /// Removes the item: Done only when it is gone.
    virtual void remove(const QString &service, const QString &account,
                        std::function<void(Outcome)> done) = 0;

    /// For the end of the program: gives up what is under way, prompts included, without waiting.
    /// Nothing is answered from here on.
    virtual void cancelAll() = 0;
};
