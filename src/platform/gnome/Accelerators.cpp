#include "platform/gnome/Accelerators.h"

#include "platform/linux/KeyCodes.h"

#include <QHash>

#include <array>
#include <utility>

namespace {

/// The names of the keys of a US keyboard by virtual key code.
// clang-format off
constexpr std::array<const char *, 127> keys = {
    "a", "s", "d", "f", "h", "g", "z", "x", // 0
    "c", "v", "less", "b", "q", "w", "e", "r", // 8
    "y", "t", "1", "2", "3", "4", "6", "5", // 16
    "equal", "9", "7", "minus", "8", "0", "bracketright", "o", // 24
    "u", "bracketleft", "i", "p", "return", "l", "j", "apostrophe", // 32
    "k", "semicolon", "backslash", "comma", "slash", "n", "m", "period", // 40
    "tab", "space", "grave", "backspace", "", "escape", "", "", // 48
    "", "", "", "", "", "", "", "", // 56
    "", "kp_decimal", "", "kp_multiply", "", "kp_add", "", "", // 64
    "", "", "", "kp_divide", "kp_enter", "", "kp_subtract", "", // 72
    "", "kp_equal", "kp_0", "kp_1", "kp_2", "kp_3", "kp_4", "kp_5", // 80
    "kp_6", "kp_7", "", "kp_8", "kp_9", "", "", "", // 88
    "f5", "f6", "f7", "f3", "f8", "f9", "", "f11", // 96
    "", "", "", "", "", "f10", "menu", "f12", // 104
    "", "", "insert", "home", "page_up", "delete", "f4", "end", // 112
    "f2", "page_down", "f1", "left", "right", "down", "up", // 120
};
// clang-format on

/// How a modifier is written, the way we write it first.
constexpr std::pair<quint32, const char *> modifiers[] = {
    {HotkeyFormat::controlKey, "<Control>"}, {HotkeyFormat::optionKey, "<Alt>"},
    {HotkeyFormat::shiftKey, "<Shift>"},     {HotkeyFormat::cmdKey, "<Super>"},
    {HotkeyFormat::controlKey, "<Primary>"}, {HotkeyFormat::controlKey, "<Ctrl>"},
    {HotkeyFormat::controlKey, "<Ctl>"},     {HotkeyFormat::optionKey, "<Mod1>"},
    {HotkeyFormat::shiftKey, "<Shft>"},      {HotkeyFormat::cmdKey, "<Mod4>"},
};

std::optional<quint32> keyNamed(const QString &name) {
    // What mutter calls the key there, whatever the layout makes of it.
    if (name == QLatin1StringView("above_tab"))
        return keyNamed(QStringLiteral("grave"));
    if (name.startsWith(QLatin1StringView("0x")))
        return KeyCodes::virtualFromX11(name.toUInt(nullptr, 16));
    for (size_t key = 0; key < keys.size(); ++key) {
        if (!name.isEmpty() && name == QLatin1StringView(keys[key]))
            return static_cast<quint32>(key);
    }
    return std::nullopt;
}

} // namespace

QString Accelerators::of(const KeyCombo &combo) {
    const auto key = KeyCodes::x11FromVirtual(combo.keyCode);
    if (!key)
        return {};
    QString text;
    quint32 missing = combo.modifiers;
    for (const auto &[bit, name] : modifiers) {
        if (missing & bit)
            text += QLatin1StringView(name);
        missing &= ~bit;
    }
    return text + QStringLiteral("0x%1").arg(*key, 2, 16, QLatin1Char('0'));
}

std::optional<KeyCombo> Accelerators::parse(const QString &text) {
    KeyCombo combo;
    const qsizetype end = text.lastIndexOf(u'>') + 1;
    QString held = text.first(end).toLower();
    for (const auto &[bit, name] : modifiers) {
        const QString written = QString::fromLatin1(name).toLower();
        if (held.contains(written))
            combo.modifiers |= bit;
        held.remove(written);
    }
    const auto key = keyNamed(text.sliced(end).toLower());
    if (!key || !held.isEmpty())
        return std::nullopt;
    combo.keyCode = *key;
    return combo;
}
