#pragma once

#include <QLabel>

/// The name of a field, beside or above it.
class FieldLabel : public QLabel {
    Q_OBJECT

public:
    explicit FieldLabel(const QString &text, QWidget *parent = nullptr);
};
