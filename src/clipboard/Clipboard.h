#pragma once

#include "model/PasteFormat.h"
#include "platform/Pasteboard.h"

#include <QString>

/// Putting a link on the clipboard. A link is a display text, which may carry style markers, and
/// the address behind it.
namespace Clipboard {

/// The link as plain text in `format`, without markers and without any escaping.
QString plainRepresentation(const QString &displayText, const QString &url, PasteFormat format);

/// Replaces the clipboard by the link: HTML, RTF and plain text for a rich link, the plain
/// representation alone for every other format. With `ifCountIs`, only if the clipboard has not
/// changed since that count. `done` gets when it was done, or nothing if it was not. Returns the
/// plain representation. Main thread.
QString write(const QString &displayText, const QString &url, PasteFormat format,
              std::optional<qint64> ifCountIs, Pasteboard::Written done);

} // namespace Clipboard
