#pragma once

#include <QWidget>

/// A hairline across its column. Decoration.
class Divider : public QWidget {
public:
    explicit Divider(qreal opacity = 1, QWidget *parent = nullptr);

    QSize sizeHint() const override { return {1, 1}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    qreal m_opacity;
};
