#pragma once

#include "storage/Settings.h"

#include <QObject>

/// Calls `refresh` now and after every change of a setting, as long as `owner` lives.
template <class Refresh>
void followSettings(QObject *owner, const Refresh &refresh) {
    QObject::connect(&Settings::shared(), &Settings::didChange, owner, refresh);
    refresh();
}
