#include "preferences/kit/Caption.h"

#include "preferences/kit/Style.h"

Caption::Caption(const QString &text, QWidget *parent) : QLabel(text, parent) {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    Style::dress(this, Style::TextRole::Caption, Style::ColourRole::Secondary);
}
