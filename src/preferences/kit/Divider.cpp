#include "preferences/kit/Divider.h"

#include "preferences/kit/Style.h"

#include <QPainter>

Divider::Divider(qreal opacity, QWidget *parent) : QWidget(parent), m_opacity(opacity) {
    setFixedHeight(1);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void Divider::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setOpacity(m_opacity);
    painter.fillRect(rect(), Style::colour(Style::ColourRole::FieldStroke, palette()));
}
