#pragma once

#include "platform/Pasteboard.h"

/// What X11 calls the kinds of clipboard data, and how text in them is read.
namespace X11Targets {

/// The meaning of a target, or nothing for one that is not text-like. Targets that describe the
/// selection rather than hold data (TARGETS, TIMESTAMP and the like) have none.
std::optional<PasteboardType> typeOf(const QByteArray &name);

/// The best of `offers` to read text of `type` from, or an empty name.
QByteArray preferredName(const QList<PasteboardOffer> &offers, PasteboardType type);

/// The text in a representation: HTML may be UTF-16, STRING is Latin-1, the rest UTF-8.
QString decodedText(const PasteboardRepresentation &representation, PasteboardType type);

/// The representations under which data of `type` is offered, text in UTF-8.
PasteboardItem representations(PasteboardType type, const QByteArray &data);

} // namespace X11Targets
