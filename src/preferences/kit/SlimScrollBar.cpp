#include "preferences/kit/SlimScrollBar.h"

#include "preferences/kit/Style.h"

#include <QAbstractScrollArea>
#include <QEvent>
#include <QPainter>
#include <QStyleOptionSlider>

SlimScrollBar::SlimScrollBar(QAbstractScrollArea *area)
    : QScrollBar(Qt::Vertical, area), m_area(area) {
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->installEventFilter(this);
    setAttribute(Qt::WA_Hover);
    // The hidden bar of the area stays in charge of what there is to scroll; the two mirror it.
    const QScrollBar *usual = area->verticalScrollBar();
    connect(usual, &QScrollBar::rangeChanged, this, &SlimScrollBar::mirror);
    connect(usual, &QScrollBar::valueChanged, this, &QScrollBar::setValue);
    connect(this, &QScrollBar::valueChanged, usual, &QScrollBar::setValue);
    mirror();
}

void SlimScrollBar::mirror() {
    const QScrollBar *usual = m_area->verticalScrollBar();
    setRange(usual->minimum(), usual->maximum());
    setPageStep(usual->pageStep());
    setSingleStep(usual->singleStep());
    setValue(usual->value());
    setGeometry(m_area->width() - extent, 0, extent, m_area->height());
    setVisible(maximum() > minimum());
    raise();
}

bool SlimScrollBar::eventFilter(QObject *, QEvent *event) {
    if (event->type() == QEvent::Resize)
        QMetaObject::invokeMethod(this, &SlimScrollBar::mirror, Qt::QueuedConnection);
    return false;
}

void SlimScrollBar::paintEvent(QPaintEvent *) {
    QStyleOptionSlider option;
    initStyleOption(&option);
    QRectF knob =
        style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this);
    const bool lit = underMouse() || isSliderDown();
    const qreal side = lit ? 2 : 3.5;
    knob = QRectF(side, knob.top() + 2, width() - side - 2, knob.height() - 4);
    QColor colour = palette().color(QPalette::WindowText);
    colour.setAlphaF(lit ? 0.45F : 0.25F);
    QPainter painter(this);
    Style::paintBox(painter, knob, knob.width() / 2, colour);
}
