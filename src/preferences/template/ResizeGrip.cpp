#include "preferences/template/ResizeGrip.h"

#include "preferences/kit/Style.h"

#include <QAccessibleWidget>
#include <QMouseEvent>
#include <QPainter>

namespace {
constexpr int side = 13;
constexpr int leastDrag = 10;
constexpr int keyStep = 10;

class GripFace : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit GripFace(ResizeGrip *grip) : QAccessibleWidget(grip, QAccessible::Slider) {}

    void *interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface *>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    QVariant currentValue() const override { return grip()->fieldHeight(); }
    void setCurrentValue(const QVariant &value) override { grip()->moveTo(value.toInt()); }
    QVariant maximumValue() const override { return grip()->greatest(); }
    QVariant minimumValue() const override { return grip()->least(); }
    QVariant minimumStepSize() const override { return keyStep; }

private:
    ResizeGrip *grip() const { return static_cast<ResizeGrip *>(widget()); }
};

QAccessibleInterface *faceOf(const QString &, QObject *object) {
    auto *grip = qobject_cast<ResizeGrip *>(object);
    return grip ? new GripFace(grip) : nullptr;
}

} // namespace

ResizeGrip::ResizeGrip(int least, int greatest, QWidget *parent)
    : QWidget(parent), m_least(least), m_greatest(greatest), m_fieldHeight(least) {
    [[maybe_unused]] static const bool isInstalled = (QAccessible::installFactory(faceOf), true);
    setFixedSize(side, side);
    setCursor(Qt::SizeVerCursor);
    setFocusPolicy(Qt::TabFocus);
    setAccessibleName(QStringLiteral("Resize the field"));
    setAccessibleDescription(QStringLiteral("The Up and Down keys change its height."));
}

void ResizeGrip::setFieldHeight(int height) {
    if (height == m_fieldHeight)
        return;
    m_fieldHeight = height;
    QAccessibleValueChangeEvent news(this, height);
    QAccessible::updateAccessibility(&news);
}

void ResizeGrip::moveTo(int height) {
    Q_EMIT moved(std::clamp(height, m_least, m_greatest));
}

void ResizeGrip::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor colour = Style::colour(Style::ColourRole::Secondary, palette());
    colour.setAlphaF(0.55F);
    if (hasFocus()) {
        colour = Style::colour(Style::ColourRole::Accent, palette());
        Style::paintFocusRing(painter, rect(), 3, palette());
    }
    painter.setPen(QPen(colour, hasFocus() ? 2 : 1.3));
    for (const qreal reach : {2.5, 6.5, 10.5})
        painter.drawLine(QPointF(width() - reach, height() - 0.5),
                         QPointF(width() - 0.5, height() - reach));
}

void ResizeGrip::mousePressEvent(QMouseEvent *event) {
    if (event->button() == Qt::LeftButton)
        m_pressedAt = event->globalPosition().toPoint();
}

void ResizeGrip::mouseMoveEvent(QMouseEvent *event) {
    if (!m_pressedAt)
        return;
    const QPoint way = event->globalPosition().toPoint() - *m_pressedAt;
    m_dragging = m_dragging || QPoint::dotProduct(way, way) >= leastDrag * leastDrag;
    if (m_dragging)
        Q_EMIT dragged(way.y());
}

void ResizeGrip::mouseReleaseEvent(QMouseEvent *event) {
    if (event->button() != Qt::LeftButton)
        return;
    m_pressedAt.reset();
    if (m_dragging) {
        m_dragging = false;
        Q_EMIT dragEnded();
    }
}

void ResizeGrip::keyPressEvent(QKeyEvent *event) {
    if (event->key() != Qt::Key_Up && event->key() != Qt::Key_Down) {
        QWidget::keyPressEvent(event);
        return;
    }
    moveTo(m_fieldHeight + (event->key() == Qt::Key_Down ? keyStep : -keyStep));
}
