#pragma once

#include "stage/DesktopHome.h"

/// Starts a message bus on the socket `name` of the desktop's runtime folder, which may start
/// programs from service files in `serviceFolders`. Its address; empty (see DesktopHome::problem())
/// if it does not come up.
QString beginMessageBus(DesktopHome &home, const QString &name,
                        const QStringList &serviceFolders = {});
