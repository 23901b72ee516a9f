#pragma once

#include "storage/Keychain.h"

#include <QObject>
#include <QString>

#include <deque>
#include <functional>

/// Saving and trying the token of one product: what the buttons of the Connection tab do. Main
/// thread only; what it does not live to see is dropped.
class ConnectionTest : public QObject {
    Q_OBJECT

public:
    enum class Product { Jira, Confluence };

    /// Starts loading the stored token; see tokenLoaded().
    explicit ConnectionTest(Product product, QObject *parent = nullptr);

    Product product() const { return m_product; }

    /// Whether the stored token has been looked up. Saving before that could clear a token that
    /// the user has not seen yet.
    bool isLoaded() const { return m_isLoaded; }

    /// What is to be told, empty at first; the newest word of any save or test.
    const QString &message() const { return m_message; }
    bool isError() const { return m_isError; }
    /// Whether the message is that something is under way.
    bool isBusy() const { return m_isBusy; }

    /// Stores `text` without white space at its ends; nothing left clears the token.
    void save(const QString &text);

    /// Stores `text` like save() and tries it with the site and the e-mail now in the settings. No
    /// text clears nothing as long as the stored token could not be read; that one is tried.
    /// Tests may overlap; the last to end decides what is told. Success stores the cloud id.
    void test(const QString &text);

Q_SIGNALS:
    /// The stored token, empty for none. Once; not before the keyring could be read.
    void tokenLoaded(const QString &token);
    void changed();

private:
    struct Site {
        QString baseURL;
        QString email;
    };
    struct Attempt;
    struct Stored {
        bool isClearing = false; ///< the token was to be removed, else replaced
        bool isDone = false;
        bool isLocked = false; ///< not done since the keyring stayed locked
    };
    /// Work for the keyring; calls endTask() when the next may begin.
    using KeyringTask = std::function<void()>;

    void tell(const QString &message, bool isError, bool isBusy = false);
    QString description(const Stored &stored) const;
    void load();
    void enqueue(KeyringTask task);
    void endTask();
    void store(const QString &token, const std::function<void(const Stored &)> &done);
    void finishStoring(const Stored &stored);
    void tryStoredToken(const Site &site);
    void learn(const Keychain::TokenAnswer &answer);
    static Attempt attempt(Product product, const QString &baseURL, const QString &email,
                           const QString &token);
    void finishTest(const Attempt &made, const Site &site);

    Product m_product;
    QString m_message;
    bool m_isError = false;
    bool m_isBusy = false;
    bool m_isLoaded = false;
    bool m_isRead = false;                  ///< what the keyring holds was read or written here
    std::deque<KeyringTask> m_keyringTasks; ///< one at a time, the first is running
    int m_actions = 0; ///< saves and tests started; a save is told about only if it is the newest
};
