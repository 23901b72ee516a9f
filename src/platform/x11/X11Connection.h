#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>

#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>

/// What xcb hands over is freed with free().
struct XcbFree {
    void operator()(void *pointer) const { std::free(pointer); }
};
template <class T>
using XcbPtr = std::unique_ptr<T, XcbFree>;

/// A connection of our own to the X server of DISPLAY, beside the toolkit's, so that waits have
/// deadlines of ours. Each event is offered to the handlers in the order in which they were added.
/// Belongs to the thread that made it, which calls processEvents() when something has arrived.
class X11Connection {
public:
    using Clock = std::chrono::steady_clock;
    /// Returns true when the event was meant for it alone.
    using EventHandler = std::function<bool(const xcb_generic_event_t &)>;
    using SelectionHandler = std::function<void(const xcb_xfixes_selection_notify_event_t &)>;

    /// Waits end as if they had timed out once `interrupt`, a descriptor, is readable (-1: never).
    explicit X11Connection(int interrupt = -1);
    ~X11Connection();
    X11Connection(const X11Connection &) = delete;
    X11Connection &operator=(const X11Connection &) = delete;

    /// False when there is no X server; nothing else may be called then.
    bool isOpen() const { return m_connection != nullptr; }
    /// Whether the server has gone.
    bool isBroken() const { return xcb_connection_has_error(m_connection) != 0; }

    operator xcb_connection_t *() const { return m_connection; }
    int descriptor() const { return xcb_get_file_descriptor(m_connection); }
    xcb_window_t root() const { return m_root; }
    int screenNumber() const { return m_screenNumber; }

    /// A window of ours, never shown, for owning and receiving selections.
    xcb_window_t window() const { return m_window; }

    xcb_atom_t atom(const QByteArray &name);
    /// The same for many names, asked for in one go.
    QList<xcb_atom_t> atoms(const QList<QByteArray> &names);
    /// The names of `atoms`, asked for in one go; empty for what is no atom.
    QList<QByteArray> atomNames(const QList<xcb_atom_t> &atoms);

    void addHandler(EventHandler handler);
    /// Tells `handler` about every change of owner of `selection`.
    void watchSelection(xcb_atom_t selection, SelectionHandler handler);

    /// Handles what has arrived so far and sends what is to be sent.
    void processEvents();
    /// Handles everything the server has sent up to now, after a round trip.
    void sync();
    /// Handles events until `done` says so or `deadline()`, asked anew each time, has passed.
    bool waitUntil(const std::function<bool()> &done,
                   const std::function<Clock::time_point()> &deadline);

    /// The server's time now.
    xcb_timestamp_t freshTimestamp();

private:
    void remember(xcb_atom_t atom, const QByteArray &name);
    void dispatch(const xcb_generic_event_t &event);

    int m_interrupt;
    xcb_connection_t *m_connection = nullptr;
    int m_screenNumber = 0;
    xcb_window_t m_root = XCB_WINDOW_NONE;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    QHash<QByteArray, xcb_atom_t> m_atoms;
    QHash<xcb_atom_t, QByteArray> m_atomNames;
    QList<EventHandler> m_handlers;
    QList<std::pair<xcb_atom_t, SelectionHandler>> m_selectionHandlers;
    uint8_t m_xfixesFirstEvent = 0;
    xcb_timestamp_t m_lastTimestamp = XCB_CURRENT_TIME;
    xcb_atom_t m_timestampAtom = XCB_ATOM_NONE;
};
