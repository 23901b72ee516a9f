#include "platform/wayland/WaylandConnection.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace {

/// A compositor that does not answer by then is as good as none.
constexpr std::chrono::seconds longestRoundTrip{2};

QString whyItBroke(wl_display *display) {
    const int error = wl_display_get_error(display);
    if (error != EPROTO)
        return QStringLiteral("the connection to the compositor broke (%1)")
            .arg(QString::fromLocal8Bit(std::strerror(error)));
    const wl_interface *interface = nullptr;
    const uint32_t code = wl_display_get_protocol_error(display, &interface, nullptr);
    return QStringLiteral("the compositor refused a request (error %1 of %2)")
        .arg(code)
        .arg(QString::fromLatin1(interface ? interface->name : "an object that is gone"));
}

} // namespace

struct WaylandConnection::Sync {
    WaylandConnection *connection;
    std::function<void(bool)> done;
    WaylandObject<wl_callback> callback;
};

WaylandConnection::WaylandConnection(int interrupt) : m_interrupt(interrupt) {
    if (qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        m_problem = QStringLiteral("WAYLAND_DISPLAY is not set");
        return;
    }
    m_display = wl_display_connect(nullptr);
    if (!m_display) {
        m_problem = QStringLiteral("no compositor answers at WAYLAND_DISPLAY");
        return;
    }
    static constexpr wl_registry_listener listener{
        .global =
            [](void *self, wl_registry *, uint32_t name, const char *interface, uint32_t version) {
                static_cast<WaylandConnection *>(self)->added(name, interface, version);
            },
        .global_remove =
            [](void *self, wl_registry *, uint32_t name) {
                static_cast<WaylandConnection *>(self)->removed(name);
            },
    };
    m_registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(m_registry, &listener, this);
    // The second one brings what the seats have.
    if (!(roundTrip() && roundTrip()) && m_problem.isEmpty())
        m_problem = QStringLiteral("the compositor does not answer");
}

WaylandConnection::~WaylandConnection() {
    m_seats = {};
    m_syncs.clear();
    if (m_registry)
        wl_registry_destroy(m_registry);
    if (m_display)
        wl_display_disconnect(m_display);
}

void WaylandConnection::added(uint32_t name, const char *interface, uint32_t version) {
    m_globals.push_back({name, interface, version});
    if (m_globals.back().interface == wl_seat_interface.name)
        m_seats.add(m_registry, name);
}

void WaylandConnection::removed(uint32_t name) {
    std::erase_if(m_globals, [=](const Global &global) { return global.name == name; });
    m_seats.remove(name);
}

bool WaylandConnection::offers(const wl_interface &interface, uint32_t version) const {
    return std::any_of(m_globals.begin(), m_globals.end(), [&](const Global &global) {
        return global.interface == interface.name && global.version >= version;
    });
}

void *WaylandConnection::bindGlobal(const wl_interface &interface, uint32_t newest) {
    for (const Global &global : m_globals) {
        if (global.interface == interface.name)
            return wl_registry_bind(
                m_registry, global.name, &interface,
                std::min({global.version, uint32_t(interface.version), newest}));
    }
    return nullptr;
}

int WaylandConnection::descriptor() const {
    return wl_display_get_fd(m_display);
}

void WaylandConnection::appendWanted(std::vector<pollfd> &wanted) const {
    if (isOpen())
        wanted.push_back(
            {descriptor(), static_cast<short>(m_hasUnsent ? POLLIN | POLLOUT : POLLIN), 0});
}

/// False when the connection is broken.
bool WaylandConnection::send() {
    m_hasUnsent = wl_display_flush(m_display) < 0 && errno == EAGAIN;
    return wl_display_get_error(m_display) == 0;
}

void WaylandConnection::handleEvents() {
    if (!isOpen())
        return;
    // Reading takes what is there, and does not wait where nothing is.
    bool works = true;
    while (works && wl_display_prepare_read(m_display) != 0)
        works = wl_display_dispatch_pending(m_display) >= 0;
    works = works && wl_display_read_events(m_display) == 0 &&
            wl_display_dispatch_pending(m_display) >= 0;
    // What the compositor said last stands in what can be read although nothing can be sent.
    if (!works || !send())
        broke();
}

void WaylandConnection::broke() {
    if (!isOpen())
        return;
    m_problem = whyItBroke(m_display);
    m_hasUnsent = false;
    for (const auto &sync : std::exchange(m_syncs, {}))
        sync->done(false);
}

void WaylandConnection::sync(std::function<void(bool)> done) {
    if (!isOpen()) {
        done(false);
        return;
    }
    static constexpr wl_callback_listener listener{
        .done =
            [](void *data, wl_callback *, uint32_t) {
                auto *answered = static_cast<Sync *>(data);
                auto &all = answered->connection->m_syncs;
                const auto found = std::find_if(all.begin(), all.end(), [=](const auto &sync) {
                    return sync.get() == answered;
                });
                const std::unique_ptr<Sync> sync = std::move(*found);
                all.erase(found);
                sync->done(true);
            },
    };
    auto &sync = m_syncs.emplace_back(std::make_unique<Sync>());
    sync->connection = this;
    sync->done = std::move(done);
    sync->callback = holdWayland(wl_display_sync(m_display), wl_callback_destroy);
    wl_callback_add_listener(sync->callback.get(), &listener, sync.get());
    send();
}

bool WaylandConnection::waitUntil(const std::function<bool()> &done,
                                  const std::function<Clock::time_point()> &deadline,
                                  const Along &along) {
    std::vector<pollfd> wanted;
    for (;;) {
        handleEvents();
        if (done())
            return true;
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline() - Clock::now()).count();
        if (left <= 0 || !isOpen())
            return false;
        wanted.assign(1, {m_interrupt, POLLIN, 0});
        appendWanted(wanted);
        if (along.want)
            along.want(wanted);
        if (poll(wanted.data(), wanted.size(), static_cast<int>(left)) > 0 && wanted[0].revents)
            return false;
        if (along.serve)
            along.serve();
    }
}

bool WaylandConnection::roundTrip(const Along &along) {
    // Shared with the callback, which may come after this has been given up.
    const auto answered = std::make_shared<std::optional<bool>>();
    sync([answered](bool works) { *answered = works; });
    const auto deadline = Clock::now() + longestRoundTrip;
    waitUntil([&] { return answered->has_value(); }, [=] { return deadline; }, along);
    return answered->value_or(false);
}
