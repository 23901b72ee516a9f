#pragma once

#include <QString>

class StageProcess;

/// What shows the windows of a desktop and hands out its keys.
class Screen {
public:
    Screen() = default;
    virtual ~Screen() = default;
    Screen(const Screen &) = delete;
    Screen &operator=(const Screen &) = delete;

    /// The name of the X display, of XWayland on a Wayland compositor.
    virtual QString display() const = 0;
    /// The name of the X display where faking a key is pressing it on the keyboard; empty where
    /// keyboard() does that.
    virtual QString keyboardDisplay() const { return {}; }
    /// The program that plays the keyboard (wayland_keyboard); null on an X server.
    virtual StageProcess *keyboard() const { return nullptr; }
    /// Waits for what was still coming up when the constructor returned.
    virtual void awaitReady() {}
};
