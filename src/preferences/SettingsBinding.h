#pragma once

#include "storage/Settings.h"

#include <QApplication>
#include <QObject>

/// Calls `refresh` now and after every change of a setting, as long as `owner` lives.
template <class Refresh>
void followSettings(QObject *owner, const Refresh &refresh) {
    QObject::connect(&Settings::shared(), &Settings::didChange, owner, refresh);
    refresh();
}

/// Has what was typed into a field on disk as soon as the focus moves on, as long as `owner` lives.
inline void storeWhenFieldsAreLeft(QObject *owner) {
    QObject::connect(qApp, &QApplication::focusChanged, owner, [] { Settings::shared().flush(); });
}
