#pragma once

#include <QPushButton>

/// A line of text that opens a page, shortened where there is no room; a button to the keyboard and
/// to assistive programs.
class LinkButton : public QPushButton {
    Q_OBJECT

public:
    explicit LinkButton(const QString &text, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};
