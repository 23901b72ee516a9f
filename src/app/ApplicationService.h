#pragma once

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>

/// Brindle on the user's session bus: one instance only, and the standard
/// org.freedesktop.Application interface, through which launchers, scripts and a compositor's own
/// key bindings drive it. Main thread only.
class ApplicationService : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    /// What a second start does in the first instance, and the named actions.
    ApplicationService(std::function<void()> activate,
                       QHash<QString, std::function<void()>> actions);

    /// What came of the wish to be the only instance.
    enum class Claim {
        Taken,      ///< this is the one; also where there is no bus, as all else works without
        HandedOver, ///< another one is, and has been activated
        NoAnswer,   ///< another one is, and does not answer within two seconds
    };

    /// Takes the well-known name.
    Claim claim();

public Q_SLOTS:
    void Activate(const QVariantMap &platformData);
    void Open(const QStringList &uris, const QVariantMap &platformData);
    void ActivateAction(const QString &name, const QVariantList &parameter,
                        const QVariantMap &platformData);

private:
    static void carryOut(const std::function<void()> &action, const QVariantMap &platformData);

    std::function<void()> m_activate;
    QHash<QString, std::function<void()>> m_actions;
};
