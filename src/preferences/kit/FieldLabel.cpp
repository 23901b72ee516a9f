#include "preferences/kit/FieldLabel.h"

#include "preferences/kit/Style.h"

FieldLabel::FieldLabel(const QString &text, QWidget *parent) : QLabel(text, parent) {
    setTextFormat(Qt::PlainText);
    Style::dress(this, Style::TextRole::Label);
}
