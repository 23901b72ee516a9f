#include "platform/x11/XkbLayout.h"

#include "platform/linux/KeyCodes.h"
#include "platform/x11/X11Connection.h"

#include <QHash>

#include "platform/x11/XcbXkb.h"

#include <algorithm>

namespace {

/// The character that a keysym types: Latin-1 keysyms are their characters, and those from this
/// number on are Unicode shifted by it (as keysymdef.h has it). 0 for all others.
char32_t characterOf(xcb_keysym_t sym) {
    constexpr xcb_keysym_t unicodeOffset = 0x01000000;
    constexpr xcb_keysym_t lastUnicode = unicodeOffset + 0x10ffff;
    if ((sym >= 0x20 && sym <= 0x7e) || (sym >= 0xa0 && sym <= 0xff))
        return sym;
    if (sym >= unicodeOffset + 0x100 && sym <= lastUnicode)
        return sym - unicodeOffset;
    return 0;
}

/// The group a key really uses when it has fewer than the keyboard: the low bits of its group
/// information are their number, the high ones say what happens to others.
int groupOf(const xcb_xkb_key_sym_map_t &key, int wanted) {
    const int count = key.groupInfo & 0x0f;
    if (count == 0 || wanted < count)
        return wanted;
    constexpr uint8_t redirect = 0x80;
    constexpr uint8_t clamp = 0x40;
    if (key.groupInfo & redirect)
        return std::min((key.groupInfo >> 4) & 0x03, count - 1);
    if (key.groupInfo & clamp)
        return count - 1;
    return wanted % count;
}

xcb_keysym_t unmodifiedSym(const xcb_xkb_key_sym_map_t &key, int group) {
    const int index = groupOf(key, group) * key.width;
    if (index >= xcb_xkb_key_sym_map_syms_length(&key))
        return 0;
    return xcb_xkb_key_sym_map_syms(&key)[index];
}

} // namespace

std::optional<KeyLayout> XkbLayout::read(xcb_connection_t *connection) {
    const auto stateAsked = xcb_xkb_get_state(connection, XCB_XKB_ID_USE_CORE_KBD);
    const auto mapAsked =
        xcb_xkb_get_map(connection, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_MAP_PART_KEY_SYMS, 0, 0, 0, 0,
                        0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    const XcbPtr<xcb_xkb_get_state_reply_t> state(
        xcb_xkb_get_state_reply(connection, stateAsked, nullptr));
    const XcbPtr<xcb_xkb_get_map_reply_t> reply(
        xcb_xkb_get_map_reply(connection, mapAsked, nullptr));
    if (!state || !reply)
        return std::nullopt;
    xcb_xkb_get_map_map_t map;
    xcb_xkb_get_map_map_unpack(xcb_xkb_get_map_map(reply.get()), reply->nTypes, reply->nKeySyms,
                               reply->nKeyActions, reply->totalActions, reply->totalKeyBehaviors,
                               reply->virtualMods, reply->totalKeyExplicit, reply->totalModMapKeys,
                               reply->totalVModMapKeys, reply->present, &map);
    QHash<int, char32_t> typed;
    auto keys = xcb_xkb_get_map_map_syms_rtrn_iterator(reply.get(), &map);
    for (int code = reply->firstKeySym; keys.rem > 0; ++code, xcb_xkb_key_sym_map_next(&keys))
        typed.insert(code, characterOf(unmodifiedSym(*keys.data, state->group)));

    KeyLayout layout{};
    for (size_t virtualKey = 0; virtualKey < layout.size(); ++virtualKey) {
        if (const auto code = KeyCodes::x11FromVirtual(static_cast<quint32>(virtualKey)))
            layout[virtualKey] = typed.value(*code, 0);
    }
    return layout;
}
