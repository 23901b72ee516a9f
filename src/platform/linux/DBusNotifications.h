#pragma once

#include "platform/Notifications.h"

#include <QObject>
#include <QString>

#include <optional>

/// Notifications through org.freedesktop.Notifications on the session bus, asynchronously.
class DBusNotifications : public QObject, public Notifications {
    Q_OBJECT

public:
    void show(const QString &title, const QString &body,
              std::function<void(const QString &)> failed) override;
    void findServer(std::function<void(const QString &, const QString &)> done) override;

private:
    void send(const QString &title, const QString &body, bool markup,
              const std::function<void(const QString &)> &failed);

    std::optional<bool> m_takesMarkup; ///< as the server said, once asked
};
