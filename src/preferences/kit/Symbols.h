#pragma once

#include <QColor>
#include <QRectF>

class QPainter;

/// The small drawings of the windows, all in one style: round lines on a square of 24 units.
enum class Symbol {
    ArrowClockwise,
    ArrowUpRight,
    Checklist,
    Checkmark,
    CheckmarkCircle,
    Cross,
    CrossCircle,
    Document,
    Eye,
    EyeSlash,
    Gear,
    Key,
    Keyboard,
    Link,
    Magnifier,
    MinusCircle,
    Person,
    Plus,
    PlusCircle,
    Smiley,
    Ticket,
    Trash,
    WarningTriangle,
};

namespace Symbols {

/// Draws `symbol` centred in `rect`, as large as fits, crisp at every scale.
void paint(QPainter &painter, Symbol symbol, const QRectF &rect, const QColor &colour);

} // namespace Symbols
