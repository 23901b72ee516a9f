#pragma once

#include <QImage>
#include <QStringList>

/// The titles of the windows that the window manager shows, in the order of their mapping.
QStringList windowTitles(const QString &display);

/// Whether the window with that title has the keyboard focus.
bool isActive(const QString &display, const QString &title);

/// Asks the window with that title to close, as the button in its frame does; false if there is
/// none.
bool closeWindow(const QString &display, const QString &title);

/// Where on the screen the window with that title is to be seen, without its frame; empty if there
/// is none.
QRect windowPlace(const QString &display, const QString &title);

/// What is to be seen on the screen now; null when the display does not answer.
QImage screenPicture(const QString &display);
