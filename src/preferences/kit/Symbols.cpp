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
    Drawing &box(const QRectF &rect, qreal radius) {
        lines.addRoundedRect(rect, radius, radius);
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

Drawing eye() {
    Drawing drawing;
    drawing.lines.moveTo(2.5, 12);
    drawing.lines.cubicTo(6.5, 3.8, 17.5, 3.8, 21.5, 12);
    drawing.lines.cubicTo(17.5, 20.2, 6.5, 20.2, 2.5, 12);
    return drawing.circle({12, 12}, 3);
}

Drawing link() {
    Drawing drawing;
    drawing.lines.moveTo(10, 13.5);
    drawing.lines.cubicTo(12, 16, 15, 16, 16.8, 14.2);
    drawing.lines.lineTo(20, 11);
    drawing.lines.cubicTo(24, 6.5, 17.5, 0.5, 13, 4);
    drawing.lines.lineTo(11.5, 5.5);
    drawing.lines.moveTo(14, 10.5);
    drawing.lines.cubicTo(12, 8, 9, 8, 7.2, 9.8);
    drawing.lines.lineTo(4, 13);
    drawing.lines.cubicTo(0, 17.5, 6.5, 23.5, 11, 20);
    drawing.lines.lineTo(12.5, 18.5);
    return drawing;
}

Drawing keyboard() {
    Drawing drawing;
    drawing.box({2, 5.5, 20, 13}, 2.5);
    for (const qreal x : {6.0, 10.0, 14.0, 18.0})
        drawing.dot({x, 10});
    return drawing.line({{8, 14.5}, {16, 14.5}});
}

Drawing ticket() {
    Drawing drawing;
    drawing.lines.moveTo(3, 6);
    drawing.lines.lineTo(21, 6);
    drawing.lines.lineTo(21, 9.5);
    drawing.lines.arcTo(QRectF(18.5, 9.5, 5, 5), 90, 180);
    drawing.lines.lineTo(21, 18);
    drawing.lines.lineTo(3, 18);
    drawing.lines.lineTo(3, 14.5);
    drawing.lines.arcTo(QRectF(0.5, 9.5, 5, 5), -90, 180);
    drawing.lines.closeSubpath();
    return drawing.dot({14, 9}).dot({14, 12}).dot({14, 15});
}

Drawing trash() {
    Drawing drawing;
    drawing.line({{4, 6.5}, {20, 6.5}}).line({{9, 6.5}, {9, 3.5}, {15, 3.5}, {15, 6.5}});
    drawing.line({{6, 6.5}, {7, 20.5}, {17, 20.5}, {18, 6.5}});
    return drawing.line({{10, 11}, {10, 16.5}}).line({{14, 11}, {14, 16.5}});
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
    case Symbol::ArrowClockwise:
        return d.arc({4, 4, 16, 16}, 35, 290).line({{19.5, 3.5}, {19, 8}, {14.5, 7.5}});
    case Symbol::ArrowUpRight:
        return d.line({{6, 18}, {18, 6}}).line({{9, 6}, {18, 6}, {18, 15}});
    case Symbol::Checklist:
        return checklist();
    case Symbol::Checkmark:
        return d.line({{4.5, 12.5}, {9.5, 17.5}, {19.5, 6.5}});
    case Symbol::CheckmarkCircle:
        return circled(d.line({{7.5, 12.5}, {10.7, 15.6}, {16.5, 9}}));
    case Symbol::Cross:
        return d.line({{6, 6}, {18, 18}}).line({{18, 6}, {6, 18}});
    case Symbol::CrossCircle:
        return circled(d.line({{8.7, 8.7}, {15.3, 15.3}}).line({{15.3, 8.7}, {8.7, 15.3}}));
    case Symbol::Document:
        return document();
    case Symbol::Eye:
        return eye();
    case Symbol::EyeSlash:
        return eye().line({{4, 20}, {20, 4}});
    case Symbol::Gear:
        return gear();
    case Symbol::Key:
        return d.circle({7.5, 16.5}, 4.5)
            .line({{10.8, 13.2}, {20.5, 3.5}})
            .line({{16.5, 7.5}, {19.5, 10.5}});
    case Symbol::Keyboard:
        return keyboard();
    case Symbol::Link:
        return link();
    case Symbol::Magnifier:
        return d.circle({10.5, 10.5}, 7).line({{15.6, 15.6}, {21, 21}});
    case Symbol::MinusCircle:
        return circled(d.line({{8, 12}, {16, 12}}));
    case Symbol::Person:
        return person();
    case Symbol::Plus:
        return d.line({{12, 4.5}, {12, 19.5}}).line({{4.5, 12}, {19.5, 12}});
    case Symbol::PlusCircle:
        return circled(d.line({{12, 8}, {12, 16}}).line({{8, 12}, {16, 12}}));
    case Symbol::Smiley:
        return circled(d.arc({7, 7.5, 10, 9.5}, 205, 130).dot({8.9, 9.7}).dot({15.1, 9.7}));
    case Symbol::Ticket:
        return ticket();
    case Symbol::Trash:
        return trash();
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
