#pragma once

#include <QAccessible>

class QWidget;

/// Tells assistive programs what `widget` is, where the toolkit takes it for a mere container. Its
/// name is the widget's accessible name.
void setAccessibleRole(QWidget *widget, QAccessible::Role role);
