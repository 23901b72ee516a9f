#pragma once

#include "model/HotkeyFormat.h"

#include <QList>

#include <functional>

/// The system-wide hotkeys; all of them run one handler. Main thread only.
class HotkeyManager {
public:
    static HotkeyManager &shared();

    /// Replaces every registration. Combinations without a key or a modifier are passed over; one
    /// that can't be had is logged and the others still work. `handler` runs in a turn of the event
    /// loop of its own.
    void install(const QList<KeyCombo> &combos, std::function<void()> handler);

    /// Gives every registration back and forgets the handler.
    void uninstall();

private:
    HotkeyManager() = default;
    void pressed();

    std::function<void()> m_handler;
};
