#pragma once

#include <QWidget>

/// The content of the preferences window.
class PreferencesView : public QWidget {};
