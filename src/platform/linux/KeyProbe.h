#pragma once

#include <functional>

/// A shortcut without modifiers on a key that keyboards lack. Tapped by us it fires only if no
/// modifier is held, which tells what a desktop with one state for all keyboards does not.
struct KeyProbe {
    static constexpr int evdevCode = 188;
    static constexpr const char *trigger = "XF86Launch9";

    bool isWanted = false; ///< to be set before the hotkeys are bound
    bool isBound = false;
    std::function<void()> fired;
};
