#pragma once

#include "preferences/kit/Style.h"

#include <QLabel>

/// A text in one line, taken literally.
QLabel *plainLabel(const QString &text, Style::TextRole role,
                   Style::ColourRole colour = Style::ColourRole::Primary);

/// The name of a field, beside or above it.
QLabel *fieldLabel(const QString &text);

/// The title of a section, in upper case.
QLabel *sectionHeader(const QString &text);
