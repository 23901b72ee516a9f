#include "platform/wayland/WaylandSeats.h"

#include <algorithm>

namespace {
/// The version that tells capabilities; no more is asked of a seat.
constexpr uint32_t seatVersion = 1;
} // namespace

void WaylandSeats::add(wl_registry *registry, uint32_t name) {
    static constexpr wl_seat_listener listener{
        .capabilities = capabilities,
        .name = [](void *, wl_seat *, const char *) {},
    };
    auto *object =
        static_cast<wl_seat *>(wl_registry_bind(registry, name, &wl_seat_interface, seatVersion));
    auto &seat = m_seats.emplace_back(std::make_unique<Seat>());
    seat->seats = this;
    seat->name = name;
    seat->object = holdWayland(object, wl_seat_destroy);
    wl_seat_add_listener(object, &listener, seat.get());
    tell();
}

void WaylandSeats::remove(uint32_t name) {
    if (std::erase_if(m_seats, [=](const auto &seat) { return seat->name == name; }) > 0)
        tell();
}

void WaylandSeats::capabilities(void *data, wl_seat *, uint32_t capabilities) {
    auto *seat = static_cast<Seat *>(data);
    seat->hasKeyboard = capabilities & WL_SEAT_CAPABILITY_KEYBOARD;
    seat->seats->tell();
}

const WaylandSeats::Seat *WaylandSeats::find() const {
    if (m_seats.empty())
        return nullptr;
    const auto found = std::find_if(m_seats.begin(), m_seats.end(),
                                    [](const auto &seat) { return seat->hasKeyboard; });
    return found == m_seats.end() ? m_seats.front().get() : found->get();
}

wl_seat *WaylandSeats::best() const {
    const Seat *seat = find();
    return seat ? seat->object.get() : nullptr;
}

bool WaylandSeats::bestHasKeyboard() const {
    const Seat *seat = find();
    return seat && seat->hasKeyboard;
}

void WaylandSeats::tell() const {
    if (m_changed)
        m_changed();
}
