#pragma once

#include "platform/Alerts.h"

#include <QHash>
#include <QMessageBox>
#include <QPointer>

/// Alerts as message boxes that come to the front. One that informs carries the application's icon.
class QtAlerts : public Alerts {
public:
    void show(const Alert &alert, std::function<void(int)> chosen) override;

private:
    QHash<QString, QPointer<QMessageBox>> m_open; ///< by message
};
