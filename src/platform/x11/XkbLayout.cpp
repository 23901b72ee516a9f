#include "platform/x11/XkbLayout.h"

#include "platform/linux/KeyCodes.h"

#include <xkbcommon/xkbcommon-x11.h>

#include <memory>

namespace {

template <auto release>
struct Release {
    template <class T>
    void operator()(T *pointer) const {
        release(pointer);
    }
};

using Context = std::unique_ptr<xkb_context, Release<xkb_context_unref>>;
using Keymap = std::unique_ptr<xkb_keymap, Release<xkb_keymap_unref>>;
using State = std::unique_ptr<xkb_state, Release<xkb_state_unref>>;

/// The character that a key types without modifiers in `group`; 0 if it types none or several.
char32_t typedBy(xkb_keymap *keymap, xkb_keycode_t key, xkb_layout_index_t group) {
    constexpr xkb_level_index_t unmodified = 0;
    const xkb_keysym_t *syms = nullptr;
    const int count = xkb_keymap_key_get_syms_by_level(keymap, key, group, unmodified, &syms);
    return count == 1 ? xkb_keysym_to_utf32(syms[0]) : 0;
}

} // namespace

std::optional<KeyLayout> XkbLayout::read(xcb_connection_t *connection) {
    static const Context context(xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES));
    const int32_t device = xkb_x11_get_core_keyboard_device_id(connection);
    if (!context || device < 0)
        return std::nullopt;
    const Keymap keymap(xkb_x11_keymap_new_from_device(context.get(), connection, device,
                                                       XKB_KEYMAP_COMPILE_NO_FLAGS));
    const State state(keymap ? xkb_x11_state_new_from_device(keymap.get(), connection, device)
                             : nullptr);
    if (!state)
        return std::nullopt;
    const auto group = xkb_state_serialize_layout(state.get(), XKB_STATE_LAYOUT_EFFECTIVE);
    KeyLayout layout{};
    for (size_t virtualKey = 0; virtualKey < layout.size(); ++virtualKey) {
        if (const auto key = KeyCodes::x11FromVirtual(static_cast<quint32>(virtualKey)))
            layout[virtualKey] = typedBy(keymap.get(), *key, group);
    }
    return layout;
}
