#include "platform/kde/QtKeys.h"

#include <Qt>

#include <array>
#include <utility>

namespace {

using enum Qt::Key;

constexpr Qt::Key none{};

/// By virtual key code. The keypad is left out, whose keys depend on Num Lock, and so are F13 and
/// above, which PC keyboards map to something else.
// clang-format off
constexpr std::array<Qt::Key, 127> keys = {
    Key_A, Key_S, Key_D, Key_F, Key_H, Key_G, Key_Z, Key_X, // 0
    Key_C, Key_V, none, Key_B, Key_Q, Key_W, Key_E, Key_R, // 8
    Key_Y, Key_T, Key_1, Key_2, Key_3, Key_4, Key_6, Key_5, // 16
    Key_Equal, Key_9, Key_7, Key_Minus, Key_8, Key_0, Key_BracketRight, Key_O, // 24
    Key_U, Key_BracketLeft, Key_I, Key_P, Key_Return, Key_L, Key_J, Key_Apostrophe, // 32
    Key_K, Key_Semicolon, Key_Backslash, Key_Comma, Key_Slash, Key_N, Key_M, Key_Period, // 40
    Key_Tab, Key_Space, Key_QuoteLeft, Key_Backspace, none, Key_Escape, none, none, // 48
    none, none, none, none, none, none, none, none, // 56
    none, none, none, none, none, none, none, none, // 64
    none, none, none, none, none, none, none, none, // 72
    none, none, none, none, none, none, none, none, // 80
    none, none, none, none, none, none, none, none, // 88
    Key_F5, Key_F6, Key_F7, Key_F3, Key_F8, Key_F9, none, Key_F11, // 96
    none, none, none, none, none, Key_F10, none, Key_F12, // 104
    none, none, Key_Insert, Key_Home, Key_PageUp, Key_Delete, Key_F4, Key_End, // 112
    Key_F2, Key_PageDown, Key_F1, Key_Left, Key_Right, Key_Down, Key_Up, // 120
};
// clang-format on

constexpr std::pair<Qt::Key, Qt::Key> shifted[] = {
    {Key_1, Key_Exclam},
    {Key_2, Key_At},
    {Key_3, Key_NumberSign},
    {Key_4, Key_Dollar},
    {Key_5, Key_Percent},
    {Key_6, Key_AsciiCircum},
    {Key_7, Key_Ampersand},
    {Key_8, Key_Asterisk},
    {Key_9, Key_ParenLeft},
    {Key_0, Key_ParenRight},
    {Key_Minus, Key_Underscore},
    {Key_Equal, Key_Plus},
    {Key_Semicolon, Key_Colon},
    {Key_Apostrophe, Key_QuoteDbl},
    {Key_Comma, Key_Less},
    {Key_Period, Key_Greater},
    {Key_Slash, Key_Question},
    {Key_QuoteLeft, Key_AsciiTilde},
    {Key_Backslash, Key_Bar},
    {Key_BracketLeft, Key_BraceLeft},
    {Key_BracketRight, Key_BraceRight},
};

constexpr std::pair<quint32, Qt::KeyboardModifier> modifiers[] = {
    {HotkeyFormat::controlKey, Qt::ControlModifier},
    {HotkeyFormat::optionKey, Qt::AltModifier},
    {HotkeyFormat::shiftKey, Qt::ShiftModifier},
    {HotkeyFormat::cmdKey, Qt::MetaModifier},
};

} // namespace

QList<int> QtKeys::of(const KeyCombo &combo) {
    if (combo.keyCode >= keys.size() || keys[combo.keyCode] == none)
        return {};
    const Qt::Key key = keys[combo.keyCode];
    int held = 0;
    for (const auto &[bit, modifier] : modifiers) {
        if (combo.modifiers & bit)
            held |= static_cast<int>(modifier);
    }
    QList<int> all{key | held};
    for (const auto &[plain, withShift] : shifted) {
        if (plain == key && held & Qt::ShiftModifier)
            all.append(withShift | (held & ~static_cast<int>(Qt::ShiftModifier)));
    }
    return all;
}
