#pragma once

#include "model/PasteFormat.h"

#include <QString>

/// Putting a link on the clipboard. A link is a display text, which may carry style markers, and
/// the address behind it.
namespace Clipboard {

/// The link as plain text in `format`, without markers and without any escaping.
QString plainRepresentation(const QString &displayText, const QString &url, PasteFormat format);

/// Replaces the clipboard by the link: HTML, RTF and plain text for a rich link, the plain
/// representation alone for every other format. Returns the plain representation. Main thread.
QString write(const QString &displayText, const QString &url, PasteFormat format);

} // namespace Clipboard
