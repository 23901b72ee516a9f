#include "preferences/kit/BorderedField.h"

#include <QPainter>

BorderedField::BorderedField(const QString &prompt, QWidget *parent) : QLineEdit(parent) {
    setFrame(false);
    setPlaceholderText(prompt);
    setAccessibleName(prompt);
    setTextMargins(Style::fieldHorizontalPadding - 2, Style::fieldVerticalPadding - 1,
                   Style::fieldHorizontalPadding - 2, Style::fieldVerticalPadding - 1);
    Style::dress(this, Style::TextRole::Body);
    // The rounded body is painted below the text instead of the style's own panel.
    QPalette clear = palette();
    clear.setColor(QPalette::Base, Qt::transparent);
    setPalette(clear);
}

void BorderedField::setMonospaced() {
    Style::dress(this, Style::TextRole::Code);
}

void BorderedField::follow(const QString &text) {
    if (text != this->text())
        setText(text);
}

QSize BorderedField::sizeHint() const {
    return {Style::scaled(160), minimumSizeHint().height()};
}

QSize BorderedField::minimumSizeHint() const {
    // Fields are equally high, whatever they are set in.
    const int line =
        std::max(fontMetrics().height(), QFontMetrics(Style::font(Style::TextRole::Body)).height());
    return {Style::scaled(48), line + 2 * Style::fieldVerticalPadding};
}

void BorderedField::paintEvent(QPaintEvent *event) {
    {
        QPainter painter(this);
        const QPalette around = parentWidget() ? parentWidget()->palette() : palette();
        Style::paintField(painter, rect(), around, hasFocus());
    }
    QLineEdit::paintEvent(event);
}
