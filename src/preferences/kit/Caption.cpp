#include "preferences/kit/Caption.h"

#include "preferences/kit/Style.h"

#include <QPainter>
#include <QStyle>

#include <cmath>

Caption::Caption(const QString &text, QWidget *parent) : QLabel(text, parent) {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    Style::dress(this, Style::TextRole::Caption, Style::ColourRole::Secondary);
    m_lines.setCacheEnabled(true);
}

void Caption::renew() const {
    if (m_lines.text() == text() && m_lines.font() == font())
        return;
    m_lines.setText(text());
    m_lines.setFont(font());
    m_width = -1;
    m_heights.clear();
}

void Caption::breakLines(int width) const {
    renew();
    if (m_width == width)
        return;
    m_width = width;
    QTextOption option(QStyle::visualAlignment(layoutDirection(), alignment()));
    option.setTextDirection(layoutDirection());
    m_lines.setTextOption(option);
    m_height = 0;
    m_lines.beginLayout();
    for (QTextLine line = m_lines.createLine(); line.isValid(); line = m_lines.createLine()) {
        line.setLineWidth(width);
        line.setPosition({0, std::ceil(m_height)}); // or the lines would be unevenly sharp
        m_height = line.y() + line.ascent() + line.descent();
    }
    m_lines.endLayout();
    m_heights.insert(width, qCeil(m_height));
}

int Caption::heightForWidth(int width) const {
    if (!wordWrap())
        return QLabel::heightForWidth(width);
    const QMargins around = contentsMargins();
    width = std::max(0, width - around.left() - around.right());
    renew();
    if (!m_heights.contains(width))
        breakLines(width);
    return m_heights.value(width) + around.top() + around.bottom();
}

QSize Caption::sizeHint() const {
    if (!wordWrap())
        return QLabel::sizeHint();
    ensurePolished();
    constexpr int charactersPerLine = 80;
    const QMargins around = contentsMargins();
    const int width = charactersPerLine * fontMetrics().averageCharWidth();
    breakLines(width);
    const int wanted = std::min(width, qCeil(m_lines.maximumWidth()));
    return QSize(wanted, m_heights.value(width)).grownBy(around);
}

QSize Caption::minimumSizeHint() const {
    if (!wordWrap())
        return QLabel::minimumSizeHint();
    ensurePolished();
    renew();
    if (m_width < 0)
        sizeHint();
    return QSize(qCeil(m_lines.minimumWidth()), fontMetrics().height()).grownBy(contentsMargins());
}

void Caption::paintEvent(QPaintEvent *event) {
    if (!wordWrap()) {
        QLabel::paintEvent(event);
        return;
    }
    const QRect area = contentsRect();
    breakLines(area.width());
    const qreal spare = area.height() - m_height;
    const qreal above = alignment() & Qt::AlignVCenter  ? spare / 2
                        : alignment() & Qt::AlignBottom ? spare
                                                        : 0;
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    m_lines.draw(&painter, area.topLeft() + QPointF(0, above));
}
