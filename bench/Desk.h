#pragma once

#include "stage/StatusArea.h"
#include "stage/Workplace.h"

/// A workplace whose user has set Brindle up long ago, so that it asks for nothing at its start,
/// and has a status area. Main thread only.
class Desk : public Workplace {
public:
    /// Gives the measurement up if something of it does not start. `settings` come on top of what
    /// every user has set.
    explicit Desk(const QMap<QString, QString> &settings = {});

    bool hasIcon() const { return !m_area.items().isEmpty(); }
    /// Waits for the next icon in the status area; the time at which it came, by now().
    double waitForIcon();

private:
    StatusArea m_area{desktop.bus()};
};
