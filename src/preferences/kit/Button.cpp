#include "preferences/kit/Button.h"

#include "preferences/kit/Style.h"

#include <QPainter>

namespace {
constexpr int horizontalPadding = 14;
constexpr int verticalPadding = 6;
constexpr int iconPadding = 5;
constexpr int symbolGap = 7;

int symbolSize() {
    return Style::scaled(17);
}
} // namespace

Button::Button(const QString &title, QWidget *parent) : QPushButton(title, parent) {
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    Style::dress(this, Style::TextRole::Body);
}

Button::Button(Symbol symbol, const QString &title, QWidget *parent) : Button(title, parent) {
    m_symbol = symbol;
}

Button *Button::iconOnly(Symbol symbol, const QString &name, const QString &tip, QWidget *parent) {
    auto *button = new Button(symbol, {}, parent);
    button->setKind(Kind::Borderless);
    button->setAccessibleName(name);
    button->setToolTip(tip);
    return button;
}

void Button::setKind(Kind kind) {
    m_kind = kind;
    updateGeometry();
    update();
}

QSize Button::sizeHint() const {
    ensurePolished();
    const int line = fontMetrics().height();
    if (text().isEmpty()) {
        const int side = symbolSize() + 2 * iconPadding;
        return {side, side};
    }
    const int symbol = m_symbol ? symbolSize() + symbolGap : 0;
    return {fontMetrics().horizontalAdvance(text()) + symbol + 2 * horizontalPadding,
            line + 2 * verticalPadding + 2};
}

QColor Button::contentColour() const {
    using Style::ColourRole;
    QColor colour = Style::colour(ColourRole::Primary, palette());
    if (m_kind == Kind::Prominent)
        colour = Style::colour(ColourRole::OnAccent, palette());
    else if (m_kind == Kind::Borderless && !underMouse() && text().isEmpty())
        colour = Style::colour(ColourRole::Secondary, palette());
    if (!isEnabled())
        colour.setAlphaF(colour.alphaF() * 0.4F);
    return colour;
}

void Button::paintBody(QPainter &painter) const {
    using Style::ColourRole;
    QColor shade = palette().color(QPalette::WindowText);
    const bool lit = isEnabled() && underMouse();
    if (m_kind == Kind::Prominent) {
        QColor fill = Style::colour(ColourRole::AccentFill, palette());
        // Away from the colour of the title, which has to be read all the while.
        const int depth = isDown() ? 118 : lit ? 108 : 100;
        const bool isTitleWhite = Style::colour(ColourRole::OnAccent, palette()) == Qt::white;
        fill = isTitleWhite ? fill.darker(depth) : fill.lighter(depth);
        if (!isEnabled())
            fill.setAlphaF(0.4F);
        Style::paintBox(painter, rect(), Style::buttonRadius, fill);
        return;
    }
    const bool bordered = m_kind == Kind::Bordered;
    shade.setAlphaF(isDown() ? 0.18F : lit ? 0.10F : bordered ? 0.05F : 0.0F);
    Style::paintBox(painter, rect(), Style::buttonRadius, shade,
                    bordered ? Style::colour(ColourRole::FieldStroke, palette()) : QColor());
}

void Button::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    paintBody(painter);
    const QColor colour = contentColour();
    const int textWidth = fontMetrics().horizontalAdvance(text());
    const int gap = m_symbol && !text().isEmpty() ? symbolGap : 0;
    const int symbol = m_symbol ? symbolSize() : 0;
    int x = (width() - textWidth - gap - symbol) / 2;
    if (m_symbol)
        Symbols::paint(painter, *m_symbol, QRectF(x, (height() - symbol) / 2.0, symbol, symbol),
                       colour);
    x += symbol + gap;
    painter.setPen(colour);
    painter.setFont(font());
    painter.drawText(QRect(x, 0, textWidth + 1, height()),
                     Qt::AlignVCenter | Qt::AlignLeft | Qt::TextHideMnemonic, text());
    if (!hasFocus())
        return;
    if (m_kind == Kind::Prominent) // the ring would vanish in its colour
        Style::paintBox(painter, QRectF(rect()).adjusted(2, 2, -2, -2), Style::buttonRadius - 2, {},
                        Style::colour(Style::ColourRole::OnAccent, palette()), 1.5);
    else
        Style::paintFocusRing(painter, rect(), Style::buttonRadius, palette());
}
