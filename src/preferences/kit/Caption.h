#pragma once

#include <QLabel>

/// An explanation in a quieter colour that wraps. Its text is taken literally.
class Caption : public QLabel {
    Q_OBJECT

public:
    explicit Caption(const QString &text, QWidget *parent = nullptr);
};
