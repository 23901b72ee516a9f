#pragma once

#include "platform/Pasteboard.h"
#include "platform/wayland/Descriptor.h"
#include "platform/wayland/WaylandConnection.h"

/// The clipboard of a seat as the compositor lets a program see it that has no window: by
/// ext-data-control or wlr-data-control, which differ in their names only. Belongs to the thread of
/// its connection, must not outlive it, and does not wait.
class DataControl {
public:
    struct News {
        /// Somebody else has changed the clipboard.
        std::function<void()> changed;
        /// What we own has been taken from us; changed() comes too, if something follows on it.
        std::function<void()> lost;
        /// Somebody wants these bytes of what we own written into `pipe`.
        std::function<void(const QByteArray &data, Descriptor pipe)> fetched;
    };

    virtual ~DataControl() = default;

    /// What is on the clipboard by names that stand for text-like data, each once and no more than
    /// two dozen; nothing when the clipboard is empty.
    virtual const std::optional<QList<QByteArray>> &offered() const = 0;

    /// Asks for one of offered() to be written into `pipe`.
    virtual void receive(const QByteArray &name, const Descriptor &pipe) = 0;

    /// Takes the clipboard.
    virtual void own(const PasteboardItem &contents) = 0;
    /// Whether we have it still.
    virtual bool isOwner() const = 0;

    /// The seat is gone, and the clipboard with it.
    virtual bool hasEnded() const = 0;

    /// Why the compositor offers none; empty when it does.
    static QString problem(const WaylandConnection &wayland);
    /// By the best protocol; null when there is none or no seat.
    static std::unique_ptr<DataControl> make(WaylandConnection &wayland, News news);
};
