#include "preferences/kit/Chip.h"

#include "preferences/kit/Style.h"

#include <QPainter>

namespace {
constexpr int horizontalPadding = 8;
constexpr int verticalPadding = 4;
} // namespace

Chip::Chip(const QString &title, const QString &tip, QWidget *parent) : QPushButton(title, parent) {
    setToolTip(tip);
    setAccessibleDescription(tip);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    Style::dress(this, Style::TextRole::CodeCaption);
}

QSize Chip::sizeHint() const {
    ensurePolished();
    return {fontMetrics().horizontalAdvance(text()) + 2 * horizontalPadding,
            fontMetrics().height() + 2 * verticalPadding};
}

void Chip::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    QColor fill = Style::colour(Style::ColourRole::Secondary, palette());
    const float opacity = isDown() ? 0.3F : underMouse() ? 0.22F : 0.15F;
    fill.setAlphaF(fill.alphaF() * opacity);
    Style::paintBox(painter, rect(), Style::chipRadius, fill);
    painter.setPen(Style::colour(Style::ColourRole::Primary, palette()));
    painter.drawText(rect(), Qt::AlignCenter, text());
    if (hasFocus())
        Style::paintFocusRing(painter, rect(), Style::chipRadius, palette());
}
