#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QHash>

#include <wayland-client.h>

#include <memory>

/// Calls a function of the protocol library on a pointer at the end of its scope.
template <auto destroy>
struct WaylandDelete {
    template <typename T>
    void operator()(T *object) const {
        destroy(object);
    }
};

/// A Wayland object that is destroyed with its holder.
template <typename T, auto destroy>
using WaylandOwned = std::unique_ptr<T, WaylandDelete<destroy>>;

/// A connection to a compositor by the path of its socket, with what every piece of the kit needs.
/// One thread. Nothing falls back to the user's own compositor.
class CompositorConnection {
public:
    /// Connects and learns which globals there are; without a compositor it stays invalid.
    explicit CompositorConnection(const QByteArray &socket);
    /// The socket that a program on a desktop was started for.
    static QByteArray socketOfEnvironment();
    ~CompositorConnection();
    CompositorConnection(const CompositorConnection &) = delete;
    CompositorConnection &operator=(const CompositorConnection &) = delete;

    /// Whether the compositor answers; false for good once it has gone or complained.
    bool isValid() const { return m_display && wl_display_get_error(m_display) == 0; }
    wl_display *get() const { return m_display; }
    /// The first seat; null without one.
    wl_seat *seat() const { return m_seat; }
    /// Binds the first global of that interface, in a version not above `version`; null where
    /// there is none.
    void *bind(const wl_interface &interface, uint32_t version);

    /// Returns when the compositor has carried out everything sent so far and its answers have been
    /// handled; false if it has gone.
    bool sync() const { return isValid() && wl_display_roundtrip(m_display) >= 0; }
    /// Sends what waits to be sent, and handles what comes until `deadline` or until `other` (if
    /// not negative) can be read, whichever is first. Blocks this thread; false if it has gone.
    bool serve(QDeadlineTimer deadline, int other = -1) const;

private:
    struct Global {
        uint32_t name;
        uint32_t version;
    };
    static void announced(void *self, wl_registry *registry, uint32_t name, const char *interface,
                          uint32_t version);
    static void removed(void *self, wl_registry *registry, uint32_t name);

    wl_display *m_display = nullptr;
    wl_registry *m_registry = nullptr;
    wl_seat *m_seat = nullptr;
    QHash<QByteArray, Global> m_globals;
};
