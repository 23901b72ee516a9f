#pragma once

#include "platform/wayland/WaylandObject.h"

#include <wayland-client.h>

#include <functional>
#include <vector>

/// The seats of a compositor (most have one): who sits there with a keyboard.
class WaylandSeats {
public:
    void add(wl_registry *registry, uint32_t name);
    void remove(uint32_t name);

    /// The first that has a keyboard, else the first; null where there is none.
    wl_seat *best() const;
    bool bestHasKeyboard() const;

    /// `changed` is called when best() may have changed.
    void onChange(std::function<void()> changed) { m_changed = std::move(changed); }

private:
    struct Seat {
        WaylandSeats *seats;
        uint32_t name;
        WaylandObject<wl_seat> object;
        bool hasKeyboard = false;
    };

    static void capabilities(void *seat, wl_seat *object, uint32_t capabilities);
    const Seat *find() const;
    void tell() const;

    std::vector<std::unique_ptr<Seat>> m_seats; // in the order in which they were announced
    std::function<void()> m_changed;
};
