#pragma once

#include "platform/Pasteboard.h"

#include <optional>

/// What the user had on the clipboard: the text-like types of every item, byte for byte.
struct ClipboardSnapshot {
    /// One entry an item, empty where the item had none of the kept types.
    QList<PasteboardItem> items;

    /// Of what was read; nothing when there was nothing to give.
    static std::optional<ClipboardSnapshot> capture(const ClipboardContents &contents);

    /// What there is to put back: the items that are not empty.
    QList<PasteboardItem> kept() const;

    /// Puts the snapshot back unless the clipboard has changed since `ifCountIs`; `done` gets
    /// whether it has not. One that holds nothing leaves the pasteboard alone. Main thread.
    void restore(Pasteboard &pasteboard, qint64 ifCountIs, std::function<void(bool)> done) const;
};
