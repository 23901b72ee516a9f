#pragma once

#include "preferences/kit/Symbols.h"

#include <QWidget>

/// A symbol on a rounded, coloured tile with a faint shadow. Decoration: assistive programs need
/// the text beside it.
class TileIcon : public QWidget {
    Q_OBJECT

public:
    static constexpr int side = 32;

    TileIcon(Symbol symbol, const QColor &tile, const QColor &glyph, QWidget *parent = nullptr);

    QSize sizeHint() const override { return {side, side}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Symbol m_symbol;
    QColor m_tile;
    QColor m_glyph;
};
