#include "preferences/kit/Symbols.h"

#include <QPainter>
#include <QPainterPath>

#include <cmath>
#include <numbers>

namespace {

constexpr qreal grid = 24;
constexpr qreal lineWidth = 2;

/// What a symbol consists of: lines to draw and shapes to fill.
struct Drawing {
    QPainterPath lines;
    QPainterPath shapes;

    Drawing &line(std::initializer_list<QPointF> points) {
        auto point = points.begin();
        lines.moveTo(*point);
        for (++point; point != points.end(); ++point)
            lines.lineTo(*point);
        return *this;
    }
    Drawing &arc(const QRectF &around, qreal from, qreal sweep) {
        lines.arcMoveTo(around, from);
        lines.arcTo(around, from, sweep);
        return *this;
    }
    Drawing &circle(const QPointF &centre, qreal radius) {
        lines.addEllipse(centre, radius, radius);
        return *this;
    }
    Drawing &dot(const QPointF &centre, qreal radius = 1.25) {
        shapes.addEllipse(centre, radius, radius);
        return *this;
    }
};

Drawing gear() {
    Drawing drawing;
    constexpr int teeth = 8;
    constexpr qreal inner = 7;
    constexpr qreal outer = 9.6;
    QPainterPath rim;
    for (int i = 0; i < teeth * 4; ++i) {
        // Each tooth is a quarter of flank up, flat top, flank down and valley.
        const qreal radius = i % 4 < 2 ? outer : inner;
        const qreal angle = (i - 0.5) * 2 * std::numbers::pi / (teeth * 4);
        const QPointF point(12 + radius * std::cos(angle), 12 + radius * std::sin(angle));
        if (i == 0)
            rim.moveTo(point);
        else
            rim.lineTo(point);
    }
    rim.closeSubpath();
    drawing.lines.addPath(rim);
    return drawing.circle({12, 12}, 3);
}

Drawing document() {
    Drawing drawing;
    drawing.line({{14, 3},
                  {7, 3},
                  {5, 5},
                  {5, 19},
                  {7, 21},
                  {17, 21},
                  {19, 19},
                  {19, 8},
                  {14, 3},
                  {14, 8},
                  {19, 8}});
    return drawing.line({{9, 13}, {15, 13}}).line({{9, 17}, {13, 17}});
}

Drawing checklist() {
    Drawing drawing;
    for (const qreal y : {6.0, 17.0})
        drawing.line({{3, y}, {5, y + 2}, {9, y - 2.5}}).line({{13, y}, {21, y}});
    return drawing.line({{13, 11.5}, {21, 11.5}}).dot({6, 11.5});
}

Drawing person() {
    Drawing drawing;
    drawing.circle({12, 12}, 9.5).circle({12, 9.5}, 3.2);
    return drawing.arc({5.5, 14.5, 13, 11}, 25, 130);
}

Drawing circled(const Drawing &content) {
    Drawing drawing = content;
    return drawing.circle({12, 12}, 9.5);
}

Drawing drawing(Symbol symbol) {
    Drawing d;
    switch (symbol) {
    case Symbol::ArrowUpRight:
        return d.line({{6, 18}, {18, 6}}).line({{9, 6}, {18, 6}, {18, 15}});
    case Symbol::Checklist:
        return checklist();
    case Symbol::CheckmarkCircle:
        return circled(d.line({{7.5, 12.5}, {10.7, 15.6}, {16.5, 9}}));
    case Symbol::Document:
        return document();
    case Symbol::Gear:
        return gear();
    case Symbol::Key:
        return d.circle({7.5, 16.5}, 4.5)
            .line({{10.8, 13.2}, {20.5, 3.5}})
            .line({{16.5, 7.5}, {19.5, 10.5}});
    case Symbol::MinusCircle:
        return circled(d.line({{8, 12}, {16, 12}}));
    case Symbol::Person:
        return person();
    case Symbol::PlusCircle:
        return circled(d.line({{12, 8}, {12, 16}}).line({{8, 12}, {16, 12}}));
    case Symbol::Smiley:
        return circled(d.arc({7, 7.5, 10, 9.5}, 205, 130).dot({8.9, 9.7}).dot({15.1, 9.7}));
    case Symbol::WarningTriangle:
        return d.line({{12, 3.5}, {22, 20.5}, {2, 20.5}, {12, 3.5}, {22, 20.5}})
            .line({{12, 10}, {12, 14}})
            .dot({12, 17.3});
    }
    return d;
}

} // namespace

void Symbols::paint(QPainter &painter, Symbol symbol, const QRectF &rect, const QColor &colour) {
    const Drawing parts = drawing(symbol);
    const qreal side = std::min(rect.width(), rect.height());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(rect.center() - QPointF(side, side) / 2);
    painter.scale(side / grid, side / grid);
    // Lines, shapes and overlaps share one coat, so a translucent colour stays even.
    QPainterPathStroker pen;
    pen.setWidth(lineWidth);
    pen.setCapStyle(Qt::RoundCap);
    pen.setJoinStyle(Qt::RoundJoin);
    QPainterPath all = pen.createStroke(parts.lines);
    all.setFillRule(Qt::WindingFill);
    all.addPath(parts.shapes);
    painter.fillPath(all, colour);
    painter.restore();
}
