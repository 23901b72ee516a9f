#pragma once

#include <QString>

#include <functional>

/// Desktop notifications.
class Notifications {
public:
    virtual ~Notifications() = default;

    /// Shows a notification and returns without waiting; both texts are plain. `failed` is called
    /// later on the main thread with the reason when the desktop would not take it. Main thread.
    virtual void show(const QString &title, const QString &body,
                      std::function<void(const QString &reason)> failed) = 0;

    /// Asks who shows them: `done` gets its name and version, or nothing and the reason, later on
    /// the main thread. Main thread.
    virtual void
    findServer(std::function<void(const QString &server, const QString &problem)> done) = 0;
};
