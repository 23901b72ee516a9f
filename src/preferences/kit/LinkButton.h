#pragma once

#include <QPushButton>

/// A line of text that opens a page; a button to the keyboard and to assistive programs.
class LinkButton : public QPushButton {
    Q_OBJECT

public:
    explicit LinkButton(const QString &text, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
};
