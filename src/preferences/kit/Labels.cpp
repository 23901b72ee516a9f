#include "preferences/kit/Labels.h"

#include "preferences/kit/AccessibleRole.h"

QLabel *plainLabel(const QString &text, Style::TextRole role, Style::ColourRole colour) {
    auto *label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    Style::dress(label, role, colour);
    return label;
}

QLabel *fieldLabel(const QString &text) {
    return plainLabel(text, Style::TextRole::Label);
}

QLabel *sectionHeader(const QString &text) {
    QLabel *header =
        plainLabel(text.toUpper(), Style::TextRole::Section, Style::ColourRole::Secondary);
    header->setAccessibleName(text); // upper case is spelled out by some readers
    setAccessibleRole(header, QAccessible::Heading);
    return header;
}

QVBoxLayout *sectionColumn(QWidget *section, const QString &title, int spacing) {
    auto *column = new QVBoxLayout(section);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(spacing);
    column->addWidget(sectionHeader(title));
    return column;
}
