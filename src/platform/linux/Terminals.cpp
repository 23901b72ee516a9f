#include "platform/linux/Terminals.h"

#include <algorithm>
#include <iterator>

namespace {
/// The names of the terminals that paste on Ctrl+Shift+V.
constexpr const char *names[] = {
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

bool Terminals::isTerminal(const QByteArray &name) {
    return std::any_of(std::begin(names), std::end(names), [&](const char *known) {
        return name.compare(known, Qt::CaseInsensitive) == 0;
    });
}
