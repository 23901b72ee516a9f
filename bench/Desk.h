#pragma once

#include "stage/StatusArea.h"
#include "stage/VirtualDesktop.h"

/// A desktop whose user has set Brindle up long ago, so that it asks for nothing at its start: with
/// a settings file, a token in the keyring and a status area. Main thread only.
class Desk {
public:
    /// Gives the measurement up if something of it does not start. `recordFormat` is the format in
    /// which links to records are pasted.
    explicit Desk(const QString &recordFormat = "urlOnly");

    /// The desktop itself, to start programs on.
    const VirtualDesktop &desktop() const { return m_desktop; }

    /// Waits for the next icon in the status area; the time at which it came, by now().
    double waitForIcon();

private:
    void setBrindleUp(const QString &recordFormat) const;

    VirtualDesktop m_desktop;
    StatusArea m_area;
};
