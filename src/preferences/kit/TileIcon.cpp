#include "preferences/kit/TileIcon.h"

#include "preferences/kit/Style.h"

#include <QPainter>

TileIcon::TileIcon(Symbol symbol, const QColor &tile, const QColor &glyph, QWidget *parent)
    : QWidget(parent), m_symbol(symbol), m_tile(tile), m_glyph(glyph) {
    setFixedSize(side, side);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void TileIcon::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    // Half a pixel is left at the edges for the shadow.
    const QRectF tile = QRectF(rect()).adjusted(0.5, 0.25, -0.5, -0.75);
    Style::paintBox(painter, tile.translated(0, 0.5), Style::boxRadius, QColor(0, 0, 0, 26));
    Style::paintBox(painter, tile, Style::boxRadius, m_tile);
    constexpr qreal glyph = 19;
    Symbols::paint(painter, m_symbol, QRectF((side - glyph) / 2, (side - glyph) / 2, glyph, glyph),
                   m_glyph);
}
