#pragma once

#include "platform/Dispatch.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>
#include <utility>

/// The kinds of clipboard data Brindle knows by meaning; each platform has its own names for them.
enum class PasteboardType { String, Html, Rtf, Rtfd, Url, FileUrl, TabularText };

/// One type that a pasteboard item offers: the platform's name for it and, when it is one Brindle
/// knows, its meaning.
struct PasteboardOffer {
    QByteArray name;
    std::optional<PasteboardType> type;
};

/// One type of an item with its bytes, exactly as the owner gave them. `encoding` is the platform's
/// own note on the bytes (on X11 the property type) and is handed back unread.
struct PasteboardRepresentation {
    QByteArray name;
    QByteArray encoding;
    QByteArray data;

    bool operator==(const PasteboardRepresentation &) const = default;
};

/// One pasteboard item: its representations in the order in which the owner listed them.
using PasteboardItem = QList<PasteboardRepresentation>;

/// Where requestors stand with what was last written by us.
struct PasteboardFetches {
    std::optional<Dispatch::Clock::time_point> latest; ///< last time somebody asked for its data
    bool transferRunning = false;                      ///< a transfer in pieces is under way
};

/// The general pasteboard (the clipboard). Main thread only. Reading is bounded: an owner that
/// stays silent for a second counts as offering nothing.
class Pasteboard {
public:
    virtual ~Pasteboard() = default;

    /// Grows with every change of content, ours or foreign.
    virtual qint64 changeCount() = 0;

    /// The text under `type` (String or Html), or nothing when it is not offered or does not come.
    virtual std::optional<QString> text(PasteboardType type) = 0;

    /// What each item offers, in pasteboard order; nothing when there is no owner that answers.
    virtual std::optional<QList<QList<PasteboardOffer>>> items() = 0;

    /// The bytes of `offers` of item number `item`; what the owner does not give is left out.
    virtual PasteboardItem read(qsizetype item, const QList<PasteboardOffer> &offers) = 0;

    /// Replaces the contents by one item with these types, text in UTF-8. One change.
    virtual void write(const QList<std::pair<PasteboardType, QByteArray>> &flavours) = 0;

    /// Replaces the contents by items read earlier, under the names they had. One change.
    virtual void restore(const QList<PasteboardItem> &items) = 0;

    /// Who has fetched what was last written.
    virtual PasteboardFetches fetches() = 0;

    /// Gives what we own to whoever keeps the clipboard beyond its owner's end, if somebody does.
    /// To be called before quitting; bounded in time.
    virtual void handOver() = 0;
};
