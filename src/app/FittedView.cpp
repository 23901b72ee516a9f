#include "app/FittedView.h"

#include "preferences/kit/SlimScrollBar.h"

#include <QEvent>
#include <QMainWindow>
#include <QMenuBar>
#include <QScreen>
#include <QStyle>

namespace {

/// What the window manager puts around the window; a guess until it has done so.
QMargins frameOf(const QWidget &window) {
    const QRect outside = window.frameGeometry();
    const QRect inside = window.geometry();
    if (outside != inside)
        return {inside.left() - outside.left(), inside.top() - outside.top(),
                outside.right() - inside.right(), outside.bottom() - inside.bottom()};
    const QStyle *style = window.style();
    const int border = style->pixelMetric(QStyle::PM_MdiSubWindowFrameWidth);
    return {border, style->pixelMetric(QStyle::PM_TitleBarHeight) + border, border, border};
}

} // namespace

FittedView::FittedView(QWidget *view) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    new SlimScrollBar(this);
    setWidget(view);
}

QRect FittedView::roomFor(const QWidget &window) {
    return window.screen()->availableGeometry().marginsRemoved(frameOf(window));
}

QSize FittedView::sizeHint() const {
    QSize room = roomFor(*window()).size();
    if (const auto *main = qobject_cast<QMainWindow *>(window()))
        room.rheight() -= main->menuBar()->sizeHint().height();
    return widget()->sizeHint().boundedTo(room);
}

bool FittedView::event(QEvent *event) {
    if (event->type() == QEvent::ParentChange)
        window()->installEventFilter(this);
    else if (event->type() == QEvent::LayoutRequest)
        updateGeometry(); // the view asks for another size
    return QScrollArea::event(event);
}

bool FittedView::eventFilter(QObject *watched, QEvent *event) {
    // The frame comes after the window, and both may go to another screen.
    const bool mayChangeRoom =
        watched == window() &&
        (event->type() == QEvent::Move || event->type() == QEvent::ScreenChangeInternal);
    if (mayChangeRoom && roomFor(*window()).size() != m_room) {
        m_room = roomFor(*window()).size();
        updateGeometry();
    }
    return QScrollArea::eventFilter(watched, event);
}
