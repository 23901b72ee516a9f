#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QHash>
#include <QString>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <optional>

/// Frees what xcb hands out.
struct XFree {
    void operator()(void *memory) const { std::free(memory); }
};

/// A reply or an event of the X server, freed at the end of its scope; may be null.
template <typename T>
using XOwned = std::unique_ptr<T, XFree>;

/// A connection to a named display, with the few calls every piece of the kit needs. One thread.
/// Nothing falls back to DISPLAY: what runs on a stage must never reach the user's own display.
class XConnection {
public:
    /// Connects; an empty name or a display that is not there leaves it invalid.
    explicit XConnection(const QString &display);
    ~XConnection();
    XConnection(const XConnection &) = delete;
    XConnection &operator=(const XConnection &) = delete;

    /// Whether the display answers. A server that goes away makes it false.
    bool isValid() const;
    /// The connection itself; null only if the name was empty.
    xcb_connection_t *get() const { return m_connection; }
    /// The root window of the first screen; XCB_NONE when invalid.
    xcb_window_t root() const { return m_root; }

    /// The atom of that name, made if need be; XCB_NONE when invalid.
    xcb_atom_t atom(const QByteArray &name);
    /// The name of an atom; empty when there is no such atom.
    QByteArray atomName(xcb_atom_t atom) const;

    /// A small window that is never shown, listening for `eventMask` (XCB_EVENT_MASK_*).
    xcb_window_t createWindow(uint32_t eventMask) const;
    /// The server's time, by way of a property of `window`, which must listen for property
    /// changes. Events that arrive meanwhile are dropped.
    std::optional<xcb_timestamp_t> serverTime(xcb_window_t window);

    /// The next event (or error), or null once `deadline` has passed or the server has gone.
    /// Blocks this thread.
    XOwned<xcb_generic_event_t> nextEvent(QDeadlineTimer deadline) const;
    /// Returns when the server has carried out everything sent so far; false if it has gone.
    bool sync() const;

private:
    xcb_connection_t *m_connection = nullptr;
    xcb_window_t m_root = XCB_NONE;
    QHash<QByteArray, xcb_atom_t> m_atoms;
};
