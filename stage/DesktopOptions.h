#pragma once

#include <QMap>
#include <QStringList>

/// What shows windows on a VirtualDesktop and reads its keyboard.
enum class DesktopKind {
    X11,   ///< an X server
    Sway,  ///< a Wayland compositor, with XWayland
    KWin,  ///< KDE's one, with XWayland
    Labwc, ///< a Wayland compositor that binds no keys for programs, with XWayland
    Gnome, ///< GNOME's one, with XWayland and the daemon of its key bindings
};

/// Whether programs without a window reach the clipboard through the compositor; where they don't,
/// they do through the X server.
constexpr bool hasDataControl(DesktopKind kind) {
    return kind != DesktopKind::X11 && kind != DesktopKind::Gnome;
}

/// What a VirtualDesktop is made of.
struct DesktopOptions {
    /// X11: puts the display (Xephyr) inside another one: keys faked on the outer one
    /// arrive on the inner one from a keyboard of its own, apart from XTEST, as a user's do.
    /// Elsewhere there is always a keyboard like that.
    bool physicalKeyboard = false;
    /// X11: something that gives windows frames and focus. Compositors do that themselves.
    bool windowManager = true;
    bool bus = true;
    /// A real notification daemon (needs the bus).
    bool notifications = false;
    /// A secret service with an unlocked default collection (needs the bus).
    bool keyring = false;
    /// GNOME: the desktop's portals, which ask the user on its screen (needs the bus).
    bool portal = false;
    /// Programs publish their widgets to assistive technology (needs the bus).
    bool accessibility = false;
    /// Folders of service files that the bus may start programs from.
    QStringList serviceFolders = {};
    DesktopKind kind = DesktopKind::X11;
    /// Wayland: the layouts of the keyboard, separated by commas, the one in force first.
    QString layouts = QStringLiteral("us");
    /// KWin: what each program may bind besides what all may, by its absolute path: the names of
    /// globals, separated by commas, as an installed desktop entry grants them.
    QMap<QString, QString> grants = {};
};
