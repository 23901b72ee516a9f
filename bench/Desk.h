#pragma once

#include "stage/StatusArea.h"
#include "stage/VirtualDesktop.h"

/// A desktop whose user has set Brindle up long ago, so that it asks for nothing at its start: with
/// a settings file, a token in the keyring and a status area. Main thread only.
class Desk {
public:
    /// Gives the measurement up if something of it does not start. `settings` come on top of what
    /// every user has set.
    explicit Desk(const QMap<QString, QString> &settings = {});

    /// The desktop itself, to start programs on.
    const VirtualDesktop &desktop() const { return m_desktop; }

    /// Waits for the next icon in the status area; the time at which it came, by now().
    double waitForIcon();

private:
    void setBrindleUp(const QMap<QString, QString> &settings) const;

    VirtualDesktop m_desktop;
    StatusArea m_area;
};
