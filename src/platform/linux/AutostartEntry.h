#pragma once

#include "platform/LoginItems.h"

/// Our entry in the user's XDG autostart folder. A file of that name which we did not write is
/// never touched.
class AutostartEntry : public LoginItems {
public:
    Status status() override;
    QString add() override;
    QString remove() override;
};
