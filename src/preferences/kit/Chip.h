#pragma once

#include <QPushButton>

/// A small button in the shape of a rounded tag, with a piece of code as its title.
class Chip : public QPushButton {
    Q_OBJECT

public:
    Chip(const QString &title, const QString &tip, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
};
