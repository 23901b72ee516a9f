#include "preferences/kit/SegmentedPicker.h"

#include "preferences/kit/AccessibleRole.h"
#include "preferences/kit/KeyboardFocus.h"
#include "preferences/kit/Style.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QRadioButton>

namespace {

constexpr int padding = 2;

/// One choice. A radio button to the keyboard and to assistive programs.
class Segment : public QRadioButton {
public:
    explicit Segment(const QString &title) : QRadioButton(title) {
        setFocusPolicy(Qt::StrongFocus);
        setAttribute(Qt::WA_Hover);
        setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
        Style::dress(this, Style::TextRole::Body);
    }

    QSize sizeHint() const override {
        const QFontMetrics metrics = fontMetrics();
        return {metrics.horizontalAdvance(text()) + 28, metrics.height() + 10};
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint &point) const override { return rect().contains(point); }

    void focusInEvent(QFocusEvent *event) override {
        m_ring.focusIn(*event);
        QRadioButton::focusInEvent(event);
    }

    void paintEvent(QPaintEvent *) override {
        using Style::ColourRole;
        QPainter painter(this);
        QColor textColour = Style::colour(ColourRole::Primary, palette());
        if (isChecked()) {
            Style::paintBox(painter, rect(), Style::fieldRadius - padding,
                            Style::colour(ColourRole::AccentFill, palette()));
            textColour = Style::colour(ColourRole::OnAccent, palette());
        } else if (underMouse() || isDown()) {
            QColor tint = textColour;
            tint.setAlphaF(isDown() ? 0.14F : 0.07F);
            Style::paintBox(painter, rect(), Style::fieldRadius - padding, tint);
        }
        painter.setPen(textColour);
        painter.drawText(rect(), Qt::AlignCenter, text());
        // Around the choice the ring would vanish in its colour, so it is drawn in that of the
        // words.
        if (hasFocus() && m_ring.isVisible())
            Style::paintBox(painter, QRectF(rect()).adjusted(2, 2, -2, -2),
                            Style::fieldRadius - padding - 1, {}, textColour, 1.5);
    }

private:
    KeyboardFocus m_ring;
};

} // namespace

SegmentedPicker::SegmentedPicker(const QString &name, const QStringList &titles, QWidget *parent)
    : QWidget(parent) {
    setAccessibleName(name);
    setAccessibleRole(this, QAccessible::Grouping);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(padding, padding, padding, padding);
    row->setSpacing(padding);
    for (const QString &title : titles) {
        auto *segment = new Segment(title);
        segment->setAccessibleDescription(name);
        m_segments.addButton(segment, static_cast<int>(m_segments.buttons().size()));
        row->addWidget(segment);
    }
    connect(&m_segments, &QButtonGroup::idToggled, this, [this](int index, bool on) {
        if (!on)
            return;
        // The Tab key comes to the choice, not to the first one.
        for (QAbstractButton *segment : m_segments.buttons())
            segment->setFocusPolicy(segment->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
        if (!m_settingCurrent)
            Q_EMIT picked(index);
    });
}

void SegmentedPicker::setCurrent(int index) {
    m_settingCurrent = true;
    if (QAbstractButton *segment = m_segments.button(index))
        segment->setChecked(true);
    m_settingCurrent = false;
}

void SegmentedPicker::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    QColor fill = palette().color(QPalette::WindowText);
    fill.setAlphaF(0.06F);
    Style::paintBox(painter, rect(), Style::fieldRadius, fill,
                    Style::colour(Style::ColourRole::BoxStroke, palette()));
}
