#pragma once

#include <QString>

namespace HTML {

/// `text` with the characters that mean something in HTML replaced by entities, both quotes
/// included, so that it is safe in an attribute too.
QString escape(const QString &text);

} // namespace HTML
