#include "model/HotkeyFormat.h"

#include <array>

namespace HotkeyFormat {

namespace {

struct Modifier {
    quint32 bit;
    quint32 eventFlag;
    char16_t symbol;
};

/// In the order in which they are shown.
constexpr std::array modifierTable{
    Modifier{controlKey, controlFlag, u'\u2303'},
    Modifier{optionKey, optionFlag, u'\u2325'},
    Modifier{shiftKey, shiftFlag, u'\u21E7'},
    Modifier{cmdKey, commandFlag, u'\u2318'},
};

struct KeyName {
    quint32 keyCode;
    char16_t name;
};

constexpr quint32 spaceKeyCode = 49;

/// Every named key but the space bar, which has the only name of more than one character.
constexpr std::array keyNames{
    KeyName{0, u'A'},       KeyName{11, u'B'},      KeyName{8, u'C'},       KeyName{2, u'D'},
    KeyName{14, u'E'},      KeyName{3, u'F'},       KeyName{5, u'G'},       KeyName{4, u'H'},
    KeyName{34, u'I'},      KeyName{38, u'J'},      KeyName{40, u'K'},      KeyName{37, u'L'},
    KeyName{46, u'M'},      KeyName{45, u'N'},      KeyName{31, u'O'},      KeyName{35, u'P'},
    KeyName{12, u'Q'},      KeyName{15, u'R'},      KeyName{1, u'S'},       KeyName{17, u'T'},
    KeyName{32, u'U'},      KeyName{9, u'V'},       KeyName{13, u'W'},      KeyName{7, u'X'},
    KeyName{16, u'Y'},      KeyName{6, u'Z'},       KeyName{29, u'0'},      KeyName{18, u'1'},
    KeyName{19, u'2'},      KeyName{20, u'3'},      KeyName{21, u'4'},      KeyName{23, u'5'},
    KeyName{22, u'6'},      KeyName{26, u'7'},      KeyName{28, u'8'},      KeyName{25, u'9'},
    KeyName{36, u'\u21A9'}, KeyName{48, u'\u21E5'}, KeyName{53, u'\u238B'},
};

} // namespace

QString keyCodeToString(quint32 keyCode) {
    if (keyCode == spaceKeyCode)
        return QStringLiteral("Space");
    for (const KeyName &key : keyNames) {
        if (key.keyCode == keyCode)
            return QString(QChar(key.name));
    }
    return QStringLiteral("key %1").arg(keyCode);
}

QString describe(quint32 keyCode, quint32 modifiers) {
    QString text;
    for (const Modifier &modifier : modifierTable) {
        if (modifiers & modifier.bit)
            text += QChar(modifier.symbol);
    }
    return text + keyCodeToString(keyCode);
}

quint32 carbonModifiers(quint32 flags) {
    quint32 modifiers = 0;
    for (const Modifier &modifier : modifierTable) {
        if (flags & modifier.eventFlag)
            modifiers |= modifier.bit;
    }
    return modifiers;
}

} // namespace HotkeyFormat
