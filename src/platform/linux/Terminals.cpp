#include "platform/linux/Terminals.h"

#include <QList>

#include <algorithm>

namespace {
/// The class names of the terminals that paste on Ctrl+Shift+V, in lower case.
constexpr const char *classes[] = {
    "alacritty",
    "blackbox",
    "com.mitchellh.ghostty",
    "com.raggesilver.blackbox",
    "contour",
    "cool-retro-term",
    "deepin-terminal",
    "foot",
    "ghostty",
    "gnome-terminal",
    "gnome-terminal-server",
    "guake",
    "io.elementary.terminal",
    "kgx",
    "kitty",
    "konsole",
    "lxterminal",
    "mate-terminal",
    "org.gnome.console",
    "org.gnome.ptyxis",
    "org.gnome.terminal",
    "org.kde.konsole",
    "org.wezfurlong.wezterm",
    "pantheon-terminal",
    "ptyxis",
    "qterminal",
    "rio",
    "roxterm",
    "sakura",
    "st",
    "st-256color",
    "tabby",
    "terminator",
    "terminology",
    "tilda",
    "tilix",
    "wezterm-gui",
    "xfce4-terminal",
    "yakuake",
};
} // namespace

bool Terminals::isTerminal(const QByteArray &wmClass) {
    for (const QByteArray &name : wmClass.toLower().split('\0')) {
        if (std::any_of(std::begin(classes), std::end(classes),
                        [&](const char *known) { return name == known; }))
            return true;
    }
    return false;
}
