#include "preferences/kit/ResultLine.h"

#include "preferences/kit/AccessibleRole.h"
#include "preferences/kit/Style.h"
#include "preferences/kit/Symbols.h"

#include <QAccessible>
#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QTimer>

namespace {

Style::ColourRole colourOf(ResultLine::State state) {
    switch (state) {
    case ResultLine::State::Success:
        return Style::ColourRole::Success;
    case ResultLine::State::Warning:
        return Style::ColourRole::Warning;
    default:
        return Style::ColourRole::Secondary;
    }
}

/// The symbol of a result; turns while something is under way and it can be seen.
class ResultIcon : public QWidget {
public:
    ResultIcon(const ResultLine &line, int margin) : m_line(line), m_margin(margin) {
        constexpr int frame = 80;
        m_turn.setInterval(frame);
        m_turn.callOnTimeout(this, [this] {
            m_angle = (m_angle + 30) % 360;
            update();
        });
        refresh();
    }

    void refresh() {
        // As high as the first line of the text, so that it stands in its middle.
        const QFontMetrics metrics(Style::font(Style::TextRole::Caption));
        setFixedSize(Style::scaled(18), metrics.height() + 2 * m_margin);
        if (isVisible() && m_line.state() == ResultLine::State::Busy)
            m_turn.start();
        else
            m_turn.stop();
        update();
    }

protected:
    void showEvent(QShowEvent *) override { refresh(); }
    void hideEvent(QHideEvent *) override { m_turn.stop(); }

    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        const QColor colour = Style::colour(colourOf(m_line.state()), palette());
        switch (m_line.state()) {
        case ResultLine::State::Idle:
            break;
        case ResultLine::State::Busy:
            paintArc(painter, colour);
            break;
        case ResultLine::State::Success:
            Symbols::paint(painter, Symbol::CheckmarkCircle, rect(), colour);
            break;
        case ResultLine::State::Warning:
            Symbols::paint(painter, Symbol::WarningTriangle, rect(), colour);
            break;
        }
    }

private:
    void paintArc(QPainter &painter, const QColor &colour) const {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(colour, 2, Qt::SolidLine, Qt::RoundCap));
        const qreal radius = width() / 2.0 - 3;
        const QPointF centre = QRectF(rect()).center();
        painter.drawArc(QRectF(centre - QPointF(radius, radius), QSizeF(2 * radius, 2 * radius)),
                        -m_angle * 16, 270 * 16);
    }

    const ResultLine &m_line;
    int m_margin; ///< above and below the text
    QTimer m_turn;
    int m_angle = 0;
};

} // namespace

ResultLine::ResultLine(QWidget *parent)
    : QWidget(parent), m_text(Qt::PlainText), m_icon(new ResultIcon(*this, m_text.margin())) {
    setAccessibleRole(this, QAccessible::AlertMessage);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(4);
    Style::dress(&m_text, Style::TextRole::Caption);
    row->addWidget(m_icon, 0, Qt::AlignTop);
    row->addWidget(&m_text, 1);
    setResult(State::Idle);
}

void ResultLine::setResult(State state, const QString &text) {
    m_state = state;
    m_text.setText(text);
    setAccessibleName(text);
    setVisible(state != State::Idle);
    static_cast<ResultIcon *>(m_icon)->refresh();
    if (state != State::Idle && isVisible()) {
        QAccessibleEvent news(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&news);
    }
}

bool ResultLine::event(QEvent *event) {
    if (event->type() == QEvent::ApplicationFontChange)
        static_cast<ResultIcon *>(m_icon)->refresh();
    return QWidget::event(event);
}
