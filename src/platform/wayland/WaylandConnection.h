#pragma once

#include "platform/wayland/WaylandSeats.h"

#include <QByteArray>
#include <QString>

#include <poll.h>

#include <chrono>
#include <functional>
#include <vector>

/// A connection of our own to the compositor, beside the toolkit's: what it offers, its seats, and
/// requests and events without ever waiting for it longer than said. Used by one thread.
class WaylandConnection {
public:
    using Clock = std::chrono::steady_clock;

    /// What is served while this waits.
    struct Along {
        std::function<void(std::vector<pollfd> &)> want; ///< appends what to wake up for
        std::function<void()> serve;
    };

    /// Connects to the compositor of WAYLAND_DISPLAY and learns what it offers, within two seconds.
    /// While `interrupt` (a descriptor, or -1) is readable, nothing waits.
    explicit WaylandConnection(int interrupt = -1);
    ~WaylandConnection();
    WaylandConnection(const WaylandConnection &) = delete;
    WaylandConnection &operator=(const WaylandConnection &) = delete;

    /// Why it does not serve, or no longer; empty while it does.
    QString problem() const { return m_problem; }
    bool isOpen() const { return m_problem.isEmpty(); }

    /// Whether the compositor offers that protocol now, in that version or a newer one.
    bool offers(const wl_interface &interface, uint32_t version = 1) const;
    /// That protocol's global, at most in the version that `interface` describes, nor in one above
    /// `newest`; null without.
    template <class Object>
    Object *bind(const wl_interface &interface, uint32_t newest = UINT32_MAX) {
        return static_cast<Object *>(bindGlobal(interface, newest));
    }

    WaylandSeats &seats() { return m_seats; }

    /// Handles what has arrived and sends what is to be sent. Never waits.
    void handleEvents();
    /// What to wake up for: nothing once it is broken. Not after events have been read elsewhere
    /// than in handleEvents().
    void appendWanted(std::vector<pollfd> &wanted) const;
    int descriptor() const;
    /// Whether the compositor has not taken yet all that is to be sent.
    bool hasUnsent() const { return m_hasUnsent; }

    /// Calls `done` with true once the compositor has worked through all that was asked until now,
    /// with false when it never will. Not at all once the connection is gone.
    void sync(std::function<void(bool)> done);

    /// Handles events until `done`; false when `deadline` passed first, or nothing more will come.
    bool waitUntil(const std::function<bool()> &done,
                   const std::function<Clock::time_point()> &deadline, const Along &along = {});
    /// Waits until the compositor has worked through all that was asked; false when it does not
    /// within two seconds.
    bool roundTrip(const Along &along = {});

private:
    struct Global {
        uint32_t name;
        QByteArray interface;
        uint32_t version;
    };
    struct Sync;

    void *bindGlobal(const wl_interface &interface, uint32_t newest);
    void added(uint32_t name, const char *interface, uint32_t version);
    void removed(uint32_t name);
    bool send();
    void broke();

    int m_interrupt;
    QString m_problem;
    wl_display *m_display = nullptr;
    wl_registry *m_registry = nullptr;
    std::vector<Global> m_globals;
    WaylandSeats m_seats;
    std::vector<std::unique_ptr<Sync>> m_syncs;
    bool m_hasUnsent = false;
};
