#pragma once

#include "preferences/kit/Style.h"

#include <QBoxLayout>
#include <QLabel>

/// A text in one line, taken literally.
QLabel *plainLabel(const QString &text, Style::TextRole role,
                   Style::ColourRole colour = Style::ColourRole::Primary);

/// The name of a field, beside or above it.
QLabel *fieldLabel(const QString &text);

/// The title of a section, in upper case.
QLabel *sectionHeader(const QString &text);

/// Lays `section` out as a column that begins with its title.
QVBoxLayout *sectionColumn(QWidget *section, const QString &title,
                           int spacing = Style::tightSpacing);
