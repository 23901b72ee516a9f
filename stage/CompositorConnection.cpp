#include "stage/CompositorConnection.h"

#include <algorithm>
#include <poll.h>

CompositorConnection::CompositorConnection(const QByteArray &socket) {
    if (!socket.startsWith('/'))
        return;
    m_display = wl_display_connect(socket.constData());
    if (!m_display)
        return;
    static constexpr wl_registry_listener listener{announced, removed};
    m_registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(m_registry, &listener, this);
    sync();
    m_seat = static_cast<wl_seat *>(bind(wl_seat_interface, 1));
}

CompositorConnection::~CompositorConnection() {
    if (m_seat)
        wl_seat_destroy(m_seat);
    if (m_registry)
        wl_registry_destroy(m_registry);
    if (m_display)
        wl_display_disconnect(m_display);
}

QByteArray CompositorConnection::socketOfEnvironment() {
    return qgetenv("XDG_RUNTIME_DIR") + '/' + qgetenv("WAYLAND_DISPLAY");
}

void *CompositorConnection::bind(const wl_interface &interface, uint32_t version) {
    const auto global = m_globals.constFind(interface.name);
    if (global == m_globals.cend())
        return nullptr;
    return wl_registry_bind(m_registry, global->name, &interface,
                            std::min(version, global->version));
}

bool CompositorConnection::serve(QDeadlineTimer deadline, int other) const {
    if (!m_display || wl_display_dispatch_pending(m_display) < 0)
        return false;
    wl_display_flush(m_display);
    pollfd sources[]{{wl_display_get_fd(m_display), POLLIN, 0}, {other, POLLIN, 0}};
    if (poll(sources, 2, static_cast<int>(deadline.remainingTime())) > 0 && sources[0].revents != 0)
        return wl_display_dispatch(m_display) >= 0;
    return isValid();
}

void CompositorConnection::announced(void *self, wl_registry *, uint32_t name,
                                     const char *interface, uint32_t version) {
    auto &globals = static_cast<CompositorConnection *>(self)->m_globals;
    if (!globals.contains(interface))
        globals.insert(interface, {name, version});
}

void CompositorConnection::removed(void *, wl_registry *, uint32_t) {}
