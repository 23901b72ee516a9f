#include "platform/wayland/CompositorHotkeys.h"

#include <QStringList>

namespace {

struct Line {
    const char *desktop; ///< as XDG_CURRENT_DESKTOP has it, but for its case
    const char *line;
};

constexpr Line lines[] = {
    {"Hyprland", "bind = CTRL ALT SUPER, V, exec, brindle paste"},
    {"labwc", "<keybind key=\"C-A-W-v\" onRelease=\"yes\"><action name=\"Execute\" "
              "command=\"brindle paste\"/></keybind>"},
    {"niri", "Ctrl+Alt+Super+V { spawn \"brindle\" \"paste\"; }"},
    {"river", "riverctl map normal Control+Alt+Super V spawn 'brindle paste'"},
    {"sway", "bindsym --to-code Ctrl+Mod1+Mod4+v exec brindle paste"},
};

} // namespace

void CompositorHotkeys::bind(const QList<KeyCombo> &, std::function<void()>, std::function<void()>,
                             Outcome outcome) {
    outcome({});
}

std::optional<Hotkeys::DesktopsChoice> CompositorHotkeys::desktopsChoice() const {
    for (const QString &desktop : qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':')) {
        for (const Line &known : lines) {
            if (desktop.compare(QLatin1String(known.desktop), Qt::CaseInsensitive) == 0)
                return DesktopsChoice{QStringLiteral("No program can choose a hotkey here. Put "
                                                     "this line into the configuration of %1:")
                                          .arg(QLatin1String(known.desktop)),
                                      {},
                                      QString::fromLatin1(known.line)};
        }
    }
    return DesktopsChoice{QStringLiteral("No program can choose a hotkey here. Let a keyboard "
                                         "shortcut of the desktop run this command:"),
                          {},
                          QStringLiteral("brindle paste")};
}
