#include "model/HotkeyWords.h"

#include "model/HotkeyFormat.h"

#include <algorithm>
#include <array>

namespace {

struct Modifier {
    quint32 bit;
    const char16_t *name;
};

/// In the order in which they are shown.
constexpr std::array modifierNames{
    Modifier{HotkeyFormat::controlKey, u"Ctrl+"},
    Modifier{HotkeyFormat::optionKey, u"Alt+"},
    Modifier{HotkeyFormat::shiftKey, u"Shift+"},
    Modifier{HotkeyFormat::cmdKey, u"Super+"},
};

struct KeyName {
    quint32 keyCode;
    const char16_t *name;
};

/// Every key but letters and digits, which have one name everywhere.
constexpr std::array keyNames{
    KeyName{10, u"<"},          KeyName{24, u"="},        KeyName{27, u"-"},
    KeyName{30, u"]"},          KeyName{33, u"["},        KeyName{36, u"Return"},
    KeyName{39, u"'"},          KeyName{41, u";"},        KeyName{42, u"\\"},
    KeyName{43, u","},          KeyName{44, u"/"},        KeyName{47, u"."},
    KeyName{48, u"Tab"},        KeyName{49, u"Space"},    KeyName{50, u"`"},
    KeyName{51, u"Backspace"},  KeyName{53, u"Escape"},   KeyName{64, u"F17"},
    KeyName{65, u"Keypad ."},   KeyName{67, u"Keypad *"}, KeyName{69, u"Keypad +"},
    KeyName{71, u"Num Lock"},   KeyName{75, u"Keypad /"}, KeyName{76, u"Keypad Enter"},
    KeyName{78, u"Keypad -"},   KeyName{79, u"F18"},      KeyName{80, u"F19"},
    KeyName{81, u"Keypad ="},   KeyName{82, u"Keypad 0"}, KeyName{83, u"Keypad 1"},
    KeyName{84, u"Keypad 2"},   KeyName{85, u"Keypad 3"}, KeyName{86, u"Keypad 4"},
    KeyName{87, u"Keypad 5"},   KeyName{88, u"Keypad 6"}, KeyName{89, u"Keypad 7"},
    KeyName{90, u"F20"},        KeyName{91, u"Keypad 8"}, KeyName{92, u"Keypad 9"},
    KeyName{96, u"F5"},         KeyName{97, u"F6"},       KeyName{98, u"F7"},
    KeyName{99, u"F3"},         KeyName{100, u"F8"},      KeyName{101, u"F9"},
    KeyName{103, u"F11"},       KeyName{105, u"F13"},     KeyName{106, u"F16"},
    KeyName{107, u"F14"},       KeyName{109, u"F10"},     KeyName{110, u"Menu"},
    KeyName{111, u"F12"},       KeyName{113, u"F15"},     KeyName{114, u"Insert"},
    KeyName{115, u"Home"},      KeyName{116, u"Page Up"}, KeyName{117, u"Delete"},
    KeyName{118, u"F4"},        KeyName{119, u"End"},     KeyName{120, u"F2"},
    KeyName{121, u"Page Down"}, KeyName{122, u"F1"},      KeyName{123, u"Left"},
    KeyName{124, u"Right"},     KeyName{125, u"Down"},    KeyName{126, u"Up"},
};

QString keyInWords(quint32 keyCode) {
    const auto *found = std::find_if(keyNames.begin(), keyNames.end(),
                                     [&](const KeyName &key) { return key.keyCode == keyCode; });
    return found == keyNames.end() ? HotkeyFormat::keyCodeToString(keyCode)
                                   : QString::fromUtf16(found->name);
}

} // namespace

QString hotkeyInWords(quint32 keyCode, quint32 modifiers) {
    QString text;
    for (const Modifier &modifier : modifierNames) {
        if (modifiers & modifier.bit)
            text += QString::fromUtf16(modifier.name);
    }
    return text + keyInWords(keyCode);
}
