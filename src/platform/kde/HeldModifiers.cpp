#include "platform/kde/HeldModifiers.h"

#include <keystate.h>

namespace {

/// The first version that tells of more than the locks.
constexpr uint32_t versionWithModifiers = 5;

/// The protocol numbers Caps Lock, Num Lock and Scroll Lock first, then the modifiers.
constexpr uint32_t firstModifier = 3;

/// Neither held nor latched by sticky keys.
constexpr uint32_t stateUp = 0;

} // namespace

bool HeldModifiers::areTold(const WaylandConnection &wayland) {
    return wayland.isOpen() &&
           wayland.offers(org_kde_kwin_keystate_interface, versionWithModifiers);
}

HeldModifiers::HeldModifiers(WaylandConnection &wayland, std::function<void()> areUp)
    : m_areUp(std::move(areUp)),
      m_keys(holdWayland(wayland.bind<org_kde_kwin_keystate>(org_kde_kwin_keystate_interface),
                         org_kde_kwin_keystate_destroy)) {
    static constexpr org_kde_kwin_keystate_listener listener{
        .stateChanged =
            [](void *self, org_kde_kwin_keystate *, uint32_t key, uint32_t state) {
                static_cast<HeldModifiers *>(self)->changed(key, state);
            },
    };
    org_kde_kwin_keystate_add_listener(m_keys.get(), &listener, this);
    org_kde_kwin_keystate_fetchStates(m_keys.get());
    wayland.sync([this, alive = std::weak_ptr(m_alive)](bool works) {
        if (alive.expired() || !works)
            return;
        m_isComplete = true;
        tellIfUp();
    });
}

HeldModifiers::~HeldModifiers() = default;

void HeldModifiers::changed(uint32_t key, uint32_t state) {
    if (key < firstModifier)
        return;
    if (state == stateUp)
        m_held.erase(key);
    else
        m_held.insert(key);
    tellIfUp();
}

void HeldModifiers::tellIfUp() {
    if (!m_isComplete || !m_held.empty())
        return;
    const auto areUp = m_areUp; // a copy, since it may let go of this object
    areUp();
}
