#pragma once

#include <QColor>
#include <QRectF>

class QPainter;

/// The small drawings of the windows, all in one style: round lines on a square of 24 units.
enum class Symbol {
    ArrowUpRight,
    Checklist,
    CheckmarkCircle,
    Document,
    Gear,
    Key,
    MinusCircle,
    Person,
    PlusCircle,
    Smiley,
    WarningTriangle,
};

namespace Symbols {

/// Draws `symbol` centred in `rect`, as large as fits, crisp at every scale.
void paint(QPainter &painter, Symbol symbol, const QRectF &rect, const QColor &colour);

} // namespace Symbols
