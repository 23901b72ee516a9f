#include "preferences/kit/LinkButton.h"

#include "preferences/kit/Style.h"
#include "preferences/kit/Symbols.h"

#include <QPainter>

namespace {

constexpr int gap = 6;
constexpr int padding = 3; ///< room for the ring of the focus

int symbolSide() {
    return Style::scaled(16);
}

} // namespace

LinkButton::LinkButton(const QString &text, QWidget *parent) : QPushButton(text, parent) {
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    Style::dress(this, Style::TextRole::Body);
}

QSize LinkButton::sizeHint() const {
    ensurePolished();
    const int textWidth = fontMetrics().horizontalAdvance(text()) + 1; // it may be a fraction more
    return {symbolSide() + gap + textWidth + 2 * padding,
            std::max(symbolSide(), fontMetrics().height()) + 2 * padding};
}

QSize LinkButton::minimumSizeHint() const {
    return {Style::scaled(160), sizeHint().height()};
}

void LinkButton::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    QColor colour = Style::colour(Style::ColourRole::Link, palette());
    if (isDown())
        colour.setAlphaF(0.7F);
    const int side = symbolSide();
    Symbols::paint(painter, Symbol::ArrowUpRight,
                   QRectF(padding, (height() - side) / 2.0, side, side), colour);
    QFont lettering = font();
    lettering.setUnderline(underMouse());
    painter.setFont(lettering);
    painter.setPen(colour);
    const QRect area = rect().adjusted(padding + side + gap, 0, -padding, 0);
    painter.drawText(area, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextHideMnemonic,
                     fontMetrics().elidedText(text(), Qt::ElideMiddle, area.width()));
    if (hasFocus())
        Style::paintFocusRing(painter, rect(), Style::chipRadius, palette());
}
