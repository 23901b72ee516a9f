#pragma once

#include "platform/Dispatch.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>
#include <optional>
#include <utility>

/// The kinds of clipboard data Brindle knows by meaning; each platform has its own names for them.
enum class PasteboardType { String, Html, Rtf, Rtfd, Url, FileUrl, TabularText };

/// One type of an item with its bytes, exactly as the owner gave them, under the platform's name
/// for it. `encoding` is the platform's own note on the bytes (on X11 the property type) and is
/// handed back unread.
struct PasteboardRepresentation {
    QByteArray name;
    QByteArray encoding;
    QByteArray data;

    bool operator==(const PasteboardRepresentation &) const = default;
};

/// One pasteboard item: its representations in the order in which the owner listed them.
using PasteboardItem = QList<PasteboardRepresentation>;

/// What the clipboard held at one moment, as a value.
struct ClipboardContents {
    qint64 changeCount = 0;
    std::optional<QString> text; ///< the plain text, decoded
    std::optional<QString> html; ///< the HTML, decoded
    /// Every text-like type of every item, one entry an item, empty where the item has none;
    /// nothing when there is no owner that answers.
    std::optional<QList<PasteboardItem>> items;
};

/// Where others stand with what was last written by us.
struct PasteboardUse {
    bool isOurs = false;                               ///< nobody has taken the clipboard since
    std::optional<Dispatch::Clock::time_point> latest; ///< last time somebody asked for its data
    bool transferRunning = false;                      ///< a transfer is under way
};

/// What a write came to.
struct PasteboardWrite {
    qint64 changeCount = 0;
    Dispatch::Clock::time_point at; ///< when others could first see it
};

/// The general pasteboard (the clipboard). Main thread only. No call waits for another program
/// (finish() excepted); answers come through callbacks on the main thread, perhaps before the call
/// returns, and not at all once the port is gone. Calls are carried out in their order.
class Pasteboard {
public:
    using Read = std::function<void(const ClipboardContents &)>;
    /// Gets nothing when the write was not made.
    using Written = std::function<void(const std::optional<PasteboardWrite> &)>;

    virtual ~Pasteboard() = default;

    /// Why there is no clipboard on this desktop; empty when there is one.
    virtual QString unavailableBecause() const { return {}; }

    /// Gives everything that is on the clipboard. Bounded: an owner that stays silent for a second
    /// counts as offering nothing.
    virtual void read(Read done) = 0;

    /// Replaces the contents by one item with these types, text in UTF-8. One change, however many
    /// events it makes. With `ifCountIs`, only if nobody has changed the clipboard since that
    /// count.
    virtual void write(const QList<std::pair<PasteboardType, QByteArray>> &flavours,
                       std::optional<qint64> ifCountIs, Written done) = 0;

    /// Replaces the contents by items read earlier, under the names they had. Else like write().
    virtual void restore(const QList<PasteboardItem> &items, std::optional<qint64> ifCountIs,
                         Written done) = 0;

    /// Who has fetched what was last written.
    virtual PasteboardUse use() const = 0;

    /// `changed` is called when use() has changed; an empty function ends that.
    virtual void onUseChange(std::function<void()> changed) = 0;

    /// The end: puts `original` back if the clipboard still holds what we wrote last, then gives it
    /// to whoever keeps the clipboard beyond its owner's end, if somebody does, and stops. Calls
    /// that have not been carried out are dropped. Waits for that, bounded in time.
    virtual void finish(const QList<PasteboardItem> &original) = 0;
};
