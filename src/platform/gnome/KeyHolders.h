#pragma once

#include "model/HotkeyFormat.h"

#include <QStringList>

/// Who has which key combination on GNOME, by its settings. The shell gives one that it or somebody
/// before us has to nobody else, and says nothing.
namespace KeyHolders {

/// The holder of `combo` as words that go on after "is taken by"; empty when there is none.
/// `ours` are the places of our own shortcuts, which don't count.
QString of(const KeyCombo &combo, const QStringList &ours);

/// Where the shortcuts are listed that the user or a program has added, and the kind they are of.
inline constexpr const char *mediaKeys = "org.gnome.settings-daemon.plugins.media-keys";
inline constexpr const char *customKeybinding =
    "org.gnome.settings-daemon.plugins.media-keys.custom-keybinding";

} // namespace KeyHolders
