#include "clipboard/ClipboardSnapshot.h"

std::optional<ClipboardSnapshot> ClipboardSnapshot::capture(const ClipboardContents &contents) {
    return contents.items ? std::optional(ClipboardSnapshot{*contents.items}) : std::nullopt;
}

QList<PasteboardItem> ClipboardSnapshot::kept() const {
    QList<PasteboardItem> kept = items;
    kept.removeIf([](const PasteboardItem &item) { return item.isEmpty(); });
    return kept;
}

void ClipboardSnapshot::restore(Pasteboard &pasteboard, qint64 ifCountIs,
                                std::function<void(bool)> done) const {
    pasteboard.restore(kept(), ifCountIs, [done = std::move(done)](const auto &written) {
        done(written.has_value());
    });
}
