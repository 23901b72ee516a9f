#include "preferences/kit/Popover.h"

#include "preferences/kit/Style.h"

#include <QBitmap>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>

namespace {
constexpr int gap = 4;
}

Popover::Popover(Qt::WindowType type, QWidget *parent)
    : QFrame(parent, type | Qt::FramelessWindowHint) {
    setAttribute(Qt::WA_ShowWithoutActivating, type == Qt::ToolTip);
    setAttribute(Qt::WA_X11NetWmWindowTypeCombo);
    // A mask takes clicks from the corners there, but they are seen all the same.
    setAttribute(Qt::WA_TranslucentBackground,
                 QGuiApplication::platformName().startsWith(QLatin1String("wayland")));
}

void Popover::showAt(const QRect &anchor) {
    adjustSize();
    const QScreen *screen = QGuiApplication::screenAt(anchor.center());
    const QRect space = (screen ? screen : QGuiApplication::primaryScreen())->availableGeometry();
    const int below = space.bottom() - anchor.bottom() - gap;
    const int above = anchor.top() - space.top() - gap;
    const bool isBelow = height() <= below || below >= above;
    // Where it fits on neither side, it gets as low as it can be.
    resize(width(), std::min(height(), isBelow ? below : above));
    QRect place(QPoint(anchor.center().x() - width() / 2, anchor.bottom() + gap), size());
    if (!isBelow)
        place.moveBottom(anchor.top() - gap);
    place.moveLeft(std::max(space.left(), std::min(place.left(), space.right() - width() + 1)));
    place.moveTop(std::max(space.top(), std::min(place.top(), space.bottom() - height() + 1)));
    move(place.topLeft());
    show();
}

void Popover::paintEvent(QPaintEvent *) {
    using Style::ColourRole;
    QPainter painter(this);
    Style::paintBox(painter, rect(), Style::boxRadius, palette().color(QPalette::Base),
                    Style::colour(ColourRole::FieldStroke, palette()));
}

void Popover::resizeEvent(QResizeEvent *) {
    // A mask, since corners are black where nothing composes windows.
    QBitmap shape(size());
    shape.clear();
    QPainter painter(&shape);
    Style::paintBox(painter, rect(), Style::boxRadius, Qt::color1, Qt::color1);
    painter.end();
    setMask(shape);
}

void Popover::hideEvent(QHideEvent *) {
    Q_EMIT closed();
}
