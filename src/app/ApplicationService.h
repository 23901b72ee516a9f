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

    /// Takes the well-known name. False when another instance has it, which then has been
    /// activated. True also where there is no bus: everything else works without.
    bool claim();

public Q_SLOTS:
    void Activate(const QVariantMap &platformData);
    void Open(const QStringList &uris, const QVariantMap &platformData);
    void ActivateAction(const QString &name, const QVariantList &parameter,
                        const QVariantMap &platformData);

private:
    std::function<void()> m_activate;
    QHash<QString, std::function<void()>> m_actions;
};
