#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QObject>
#include <QVariantMap>

/// Stands where the desktop's dialog asks for the password of a locked keyring. The user in front
/// of it dismisses it or lets it be.
class KeyringPrompter : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.gnome.keyring.internal.Prompter")

public:
    explicit KeyringPrompter(const QDBusConnection &bus);
    ~KeyringPrompter() override;

    /// Dismisses what is still open, for which the keyring waits before it asks again.
    void dismissOpen();

    bool dismisses = true;
    int opened = 0;

public Q_SLOTS:
    Q_SCRIPTABLE void BeginPrompting(const QDBusObjectPath &callback, const QDBusMessage &call);
    Q_SCRIPTABLE void PerformPrompt(const QDBusObjectPath &callback, const QString &kind,
                                    const QVariantMap &texts, const QString &exchange,
                                    const QDBusMessage &call);
    Q_SCRIPTABLE void StopPrompting(const QDBusObjectPath &callback, const QDBusMessage &call);

private:
    void tell(const QDBusObjectPath &callback, const QDBusMessage &call, const QString &method,
              const QVariantList &arguments) const;

    QDBusConnection m_bus;
    QList<std::pair<QDBusObjectPath, QDBusMessage>> m_open;
};
