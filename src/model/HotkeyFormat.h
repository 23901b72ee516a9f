#pragma once

#include <QString>

/// A hotkey: a place on the keyboard and the modifiers held with it. Key codes are the virtual key
/// codes of an ANSI keyboard (9 is V), independent of the layout; the modifier bits are those of
/// HotkeyFormat.
struct KeyCombo {
    quint32 keyCode = 0;
    quint32 modifiers = 0;

    bool operator==(const KeyCombo &) const = default;

    /// Whether this can be a hotkey at all: one needs a key code other than 0 and a modifier.
    bool isSet() const { return keyCode != 0 && modifiers != 0; }
};

/// Key codes and modifier masks as symbols, such as ⌃⌥⌘V. Pure functions, usable from any thread.
namespace HotkeyFormat {

inline constexpr quint32 cmdKey = 0x100;      ///< Modifier bit of a hotkey: command.
inline constexpr quint32 shiftKey = 0x200;    ///< Modifier bit of a hotkey: shift.
inline constexpr quint32 optionKey = 0x800;   ///< Modifier bit of a hotkey: option.
inline constexpr quint32 controlKey = 0x1000; ///< Modifier bit of a hotkey: control.

/// The hotkey until the user chooses another: ⌃⌥⌘V.
inline constexpr KeyCombo defaultHotkey{9, controlKey | optionKey | cmdKey};

inline constexpr quint32 shiftFlag = 0x20000;    ///< Modifier flag of a keyboard event: shift.
inline constexpr quint32 controlFlag = 0x40000;  ///< Modifier flag of a keyboard event: control.
inline constexpr quint32 optionFlag = 0x80000;   ///< Modifier flag of a keyboard event: option.
inline constexpr quint32 commandFlag = 0x100000; ///< Modifier flag of a keyboard event: command.

/// The name of a key: an upper-case letter, a digit, "Space", "↩", "⇥" or "⎋"; any other key is
/// "key " and its code in decimal.
QString keyCodeToString(quint32 keyCode);

/// The symbols of the modifiers in the order ⌃⌥⇧⌘, then the name of the key, without separators.
/// Bits that are none of the four are not shown.
QString describe(quint32 keyCode, quint32 modifiers);

/// The modifier bits of a hotkey for the flags of a keyboard event; every other flag is dropped.
quint32 carbonModifiers(quint32 flags);

} // namespace HotkeyFormat
