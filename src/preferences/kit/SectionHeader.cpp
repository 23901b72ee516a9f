#include "preferences/kit/SectionHeader.h"

#include "preferences/kit/AccessibleRole.h"
#include "preferences/kit/Style.h"

SectionHeader::SectionHeader(const QString &text, QWidget *parent)
    : QLabel(text.toUpper(), parent) {
    setTextFormat(Qt::PlainText);
    setAccessibleName(text); // upper case is spelled out by some readers
    setAccessibleRole(this, QAccessible::Heading);
    Style::dress(this, Style::TextRole::Section, Style::ColourRole::Secondary);
}
