#pragma once

#include <QStringList>

/// The titles of the windows that the window manager shows, in the order of their mapping.
QStringList windowTitles(const QString &display);
