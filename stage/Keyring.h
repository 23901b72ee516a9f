#pragma once

#include <QByteArray>
#include <QString>

class VirtualDesktop;

/// Puts a token into the keyring of the desktop as Brindle keeps it.
bool storeToken(const VirtualDesktop &desktop, const QString &account, const QByteArray &token);

/// Locks the keyring of the desktop; false when it does not take it. Nobody is there to unlock it.
bool lockKeyring(const VirtualDesktop &desktop);
