#pragma once

#include <QString>

/// A hotkey as Linux desktops write it, such as Ctrl+Alt+Super+V: the modifiers in the order Ctrl,
/// Alt, Shift, Super, then the name of the key; bits that are none of the four are not shown. Keys
/// are named by their place on an ANSI keyboard; one without a name is "key " and its code. Pure,
/// usable from any thread.
QString hotkeyInWords(quint32 keyCode, quint32 modifiers);
