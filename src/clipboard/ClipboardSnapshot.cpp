#include "clipboard/ClipboardSnapshot.h"

// Every type that Brindle knows by meaning is text-like and kept; images, private types and the
// rest have no PasteboardType and are not.
std::optional<ClipboardSnapshot> ClipboardSnapshot::capture(Pasteboard &pasteboard) {
    const auto offered = pasteboard.items();
    if (!offered)
        return std::nullopt;
    ClipboardSnapshot snapshot;
    for (qsizetype item = 0; item < offered->size(); ++item) {
        QList<PasteboardOffer> kept;
        for (const PasteboardOffer &offer : offered->at(item)) {
            if (offer.type)
                kept.append(offer);
        }
        snapshot.items.append(kept.isEmpty() ? PasteboardItem() : pasteboard.read(item, kept));
    }
    return snapshot;
}

void ClipboardSnapshot::restore(Pasteboard &pasteboard) const {
    QList<PasteboardItem> kept;
    for (const PasteboardItem &item : items) {
        if (!item.isEmpty())
            kept.append(item);
    }
    if (!kept.isEmpty())
        pasteboard.restore(kept);
}
