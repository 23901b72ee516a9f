#include "preferences/kit/Switch.h"

#include "preferences/kit/Style.h"

#include <QPainter>

namespace {
constexpr int trackWidth = 36;
constexpr int trackHeight = 20;
constexpr int gap = 10;
constexpr int margin = 3;
} // namespace

Switch::Switch(const QString &title, QWidget *parent) : QCheckBox(title, parent) {
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    Style::dress(this, Style::TextRole::Body);
    constexpr int slideTime = 120;
    m_slide.setDuration(slideTime);
    m_slide.setStartValue(0.0);
    m_slide.setEndValue(0.0);
    connect(&m_slide, &QVariantAnimation::valueChanged, this, qOverload<>(&Switch::update));
    // Not at clicks: assistive programs toggle without one.
    connect(this, &QCheckBox::toggled, this, [this](bool on) {
        slide();
        if (!m_settingOn)
            Q_EMIT switched(on);
    });
}

void Switch::setOn(bool on) {
    m_settingOn = true;
    setChecked(on);
    m_settingOn = false;
}

void Switch::slide() {
    const QVariant from = m_slide.currentValue();
    m_slide.stop();
    m_slide.setStartValue(from.isValid() ? from : QVariant(0.0));
    m_slide.setEndValue(isChecked() ? 1.0 : 0.0);
    m_slide.start();
    if (!isVisible())
        m_slide.setCurrentTime(m_slide.duration());
}

QSize Switch::sizeHint() const {
    const int textWidth = fontMetrics().horizontalAdvance(text());
    return {2 * margin + trackWidth + gap + textWidth + margin,
            std::max(trackHeight, fontMetrics().height()) + 2 * margin};
}

void Switch::paintEvent(QPaintEvent *) {
    using Style::ColourRole;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal on = m_slide.currentValue().toReal();
    const QRectF track(margin, (height() - trackHeight) / 2.0, trackWidth, trackHeight);
    QColor off = palette().color(QPalette::WindowText);
    off.setAlphaF(isDown() ? 0.34F : 0.24F);
    Style::paintBox(painter, track, trackHeight / 2.0, off);
    QColor accent = Style::colour(ColourRole::Accent, palette());
    accent.setAlphaF(static_cast<float>(on));
    Style::paintBox(painter, track, trackHeight / 2.0, accent);
    const qreal knob = trackHeight - 4;
    Style::paintBox(
        painter, {track.left() + 2 + on * (trackWidth - trackHeight), track.top() + 2, knob, knob},
        knob / 2, Qt::white);
    QColor textColour = Style::colour(ColourRole::Primary, palette());
    if (!isEnabled())
        textColour.setAlphaF(0.4F);
    painter.setPen(textColour);
    painter.drawText(rect().adjusted(margin + trackWidth + gap, 0, 0, 0),
                     Qt::AlignVCenter | Qt::AlignLeft, text());
    if (hasFocus())
        Style::paintFocusRing(painter, rect(), Style::chipRadius, palette());
}
