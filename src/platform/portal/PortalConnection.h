#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QVariant>

#include <chrono>
#include <functional>
#include <vector>

/// A connection to the desktop's portal. The portal remembers of a connection which application it
/// is, by the first call that comes through it; so this one is ours alone, and names us first. Main
/// thread; no call waits.
class PortalConnection : public QObject {
    Q_OBJECT

public:
    using Answered = std::function<void(const QDBusMessage &answer)>;

    /// How long the portal may take to answer a call. What it asks the user comes apart from that.
    static constexpr std::chrono::milliseconds longestAnswer{2000};

    /// Why there is no portal; empty when one is on the bus or can be started.
    static QString problem();

    PortalConnection() = default;
    ~PortalConnection() override;

    /// Calls a method of one of the portal's interfaces. `answered` gets the reply or an error,
    /// also when the portal can't be started or stays silent.
    void call(const QString &interface, const QString &method, const QVariantList &arguments,
              Answered answered);

    /// The same for an object of the portal's; a method that needs no answer.
    void tell(const QString &path, const QString &interface, const QString &method);

    /// Reads a property of an interface; nothing where the portal has it not, or does not answer,
    /// with the reason.
    void property(const QString &interface, const QString &name,
                  std::function<void(const QVariant &value, const QString &problem)> answered);

    /// Has `slot` of `receiver` called for a signal. An empty path stands for any.
    void listen(const QString &path, const QString &interface, const QString &signal,
                QObject *receiver, const char *slot);

    /// A name for a request or session of ours, and the path at which the portal will put it;
    /// `kind` is "request" or "session".
    struct Handle {
        QString token;
        QString path;
    };
    Handle newHandle(const QString &kind);

    /// Why the portal does not know us as the application we are; empty when it does, or asks not.
    QString registrationProblem() const { return m_registrationProblem; }

Q_SIGNALS:
    /// The portal has ended, and with it every request and session.
    void lost();
    /// It is on the bus, perhaps for the second time.
    void appeared();

private:
    enum class Stage { Apart, Introducing, Ready };

    QDBusConnection bus();
    void send(const QDBusMessage &message, std::chrono::milliseconds limit, Answered answered);
    void introduce();
    void introduced(const QDBusMessage &answer);
    void ownerChanged(const QString &before, const QString &now);

    QString m_name; ///< of the connection; empty until it is opened
    Stage m_stage = Stage::Apart;
    QString m_registrationProblem;
    std::vector<std::function<void(const QString &problem)>> m_waiting; ///< for the introduction
};
