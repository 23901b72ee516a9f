#include "platform/gnome/KeyHolders.h"

#include "platform/gnome/Accelerators.h"
#include "platform/gnome/GnomeSettings.h"

#include <algorithm>

namespace {

constexpr const char *desktopsOwn[] = {
    "org.gnome.shell.keybindings",  "org.gnome.desktop.wm.keybindings",
    "org.gnome.mutter.keybindings", "org.gnome.mutter.wayland.keybindings",
    KeyHolders::mediaKeys,
};

QString ofDesktopsOwn(const KeyCombo &combo) {
    for (const char *schema : desktopsOwn) {
        const auto settings = GnomeSettings::open(schema);
        if (!settings)
            continue;
        for (const QString &key : settings->listKeys()) {
            const QStringList bound = settings->list(key);
            if (std::any_of(bound.begin(), bound.end(), [&](const QString &text) {
                    return Accelerators::parse(text) == combo;
                })) {
                const QString summary = settings->summary(key);
                return QStringLiteral("GNOME’s shortcut “%1”")
                    .arg(summary.isEmpty() ? key : summary);
            }
        }
    }
    return {};
}

} // namespace

QString KeyHolders::of(const KeyCombo &combo, const QStringList &ours) {
    const auto settings = GnomeSettings::open(mediaKeys);
    if (settings) {
        for (const QString &path : settings->list(QStringLiteral("custom-keybindings"))) {
            const auto other = GnomeSettings::open(customKeybinding, path);
            if (other && !ours.contains(path) &&
                Accelerators::parse(other->text(QStringLiteral("binding"))) == combo)
                return QStringLiteral("the custom shortcut “%1”")
                    .arg(other->text(QStringLiteral("name")));
        }
    }
    return ofDesktopsOwn(combo);
}
