#pragma once

#include "platform/Pasteboard.h"

#include <optional>

/// What the user had on the clipboard: the text-like types of every item, byte for byte. Main
/// thread.
struct ClipboardSnapshot {
    /// One entry an item, empty where the item had none of the kept types.
    QList<PasteboardItem> items;

    /// The pasteboard as it is now; nothing when it has no items to give.
    static std::optional<ClipboardSnapshot> capture(Pasteboard &pasteboard);

    /// Puts the snapshot back. One that holds nothing leaves the pasteboard alone.
    void restore(Pasteboard &pasteboard) const;
};
