#pragma once

#include <QString>

/// Desktop notifications, each also a line in the activity log. Main thread only.
namespace Notify {

/// Shows a notification and returns at once; a desktop that would not take it is logged.
void show(const QString &title, const QString &message);

} // namespace Notify
