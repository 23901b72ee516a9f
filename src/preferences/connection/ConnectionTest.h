#pragma once

#include <QObject>
#include <QString>

#include <deque>
#include <functional>
#include <optional>

/// Saving and trying the token of one product: what the buttons of the Connection tab do. The
/// keyring and the network are asked on background threads, since a locked keyring waits for its
/// prompt. Main thread only; what it does not live to see is dropped.
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
    /// Whether the message is that a test is under way.
    bool isTesting() const { return m_isTesting; }

    /// Stores `text` without white space at its ends; nothing left clears the token.
    void save(const QString &text);

    /// Stores `text` like save() and tries it with the site and the e-mail now in the settings.
    /// Tests may overlap; the last to end decides what is told. Success stores the cloud id.
    void test(const QString &text);

Q_SIGNALS:
    /// The stored token, empty for none. Once.
    void tokenLoaded(const QString &token);
    void changed();

private:
    enum class Outcome { Saved, Refused, Cleared };
    struct Site {
        QString baseURL;
        QString email;
    };
    /// Work for the keyring on a background thread; returns what is to follow on the main one.
    using KeyringTask = std::function<std::function<void()>()>;

    void tell(const QString &message, bool isError, bool isTesting = false);
    void enqueue(KeyringTask task);
    void runNextTask();
    static Outcome store(const QString &token, const QString &account);
    void stored(Outcome outcome);
    void probe(const Site &site, const QString &token);

    Product m_product;
    QString m_message;
    bool m_isError = false;
    bool m_isTesting = false;
    bool m_isLoaded = false;
    std::deque<KeyringTask> m_keyringTasks; ///< one at a time, the first is running
    int m_actions = 0; ///< saves and tests started; a save is told about only if it is the newest
};
