#pragma once

#include "platform/Pasteboard.h"

/// What Linux desktops call the kinds of clipboard data (MIME types and X11 targets), and how text
/// in them is read.
namespace FlavourNames {

/// Whether `name` stands for data, and not for a question about the selection or an order to its
/// owner, as some of X11's targets do.
bool holdsData(const QByteArray &name);

/// The meaning of `name`, or nothing for what is not text-like.
std::optional<PasteboardType> typeOf(const QByteArray &name);

/// The text of the best of `item`'s representations of `type`, or nothing.
std::optional<QString> text(const PasteboardItem &item, PasteboardType type);

/// The text in a representation: HTML may be UTF-16, STRING is Latin-1, the rest UTF-8.
QString decodedText(const PasteboardRepresentation &representation, PasteboardType type);

/// The representations under which data of `type` is offered, text in UTF-8.
PasteboardItem representations(PasteboardType type, const QByteArray &data);

/// A clipboard of one item, with its texts decoded; nothing: one without an owner that answers.
ClipboardContents contents(qint64 changeCount, const std::optional<PasteboardItem> &item);

} // namespace FlavourNames
