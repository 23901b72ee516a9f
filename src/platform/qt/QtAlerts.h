#pragma once

#include "platform/Alerts.h"

/// Alerts as message boxes that come to the front.
class QtAlerts : public Alerts {
public:
    void show(const Alert &alert, std::function<void(int)> chosen) override;
};
