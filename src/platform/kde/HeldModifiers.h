#pragma once

#include "platform/wayland/WaylandConnection.h"

#include <functional>
#include <set>

struct org_kde_kwin_keystate;

/// A look at the modifiers that are held on the keyboards, as long as this object lives: KWin wakes
/// up who looks at every stroke of such a key.
class HeldModifiers {
public:
    /// Whether the compositor tells of them.
    static bool areTold(const WaylandConnection &wayland);

    /// `areUp` is called whenever none is held, later than this. Only where they are told.
    HeldModifiers(WaylandConnection &wayland, std::function<void()> areUp);
    ~HeldModifiers();
    HeldModifiers(const HeldModifiers &) = delete;
    HeldModifiers &operator=(const HeldModifiers &) = delete;

private:
    void changed(uint32_t key, uint32_t state);
    void tellIfUp();

    std::function<void()> m_areUp;
    WaylandObject<org_kde_kwin_keystate> m_keys;
    std::set<uint32_t> m_held;
    bool m_isComplete = false;
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
};
