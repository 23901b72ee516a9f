#pragma once

#include "stage/VirtualKeyboard.h"

#include <xcb/xproto.h>

/// The hotkey that Brindle has without any settings, Ctrl+Alt+Super+V, as the X server grabs it and
/// as hands press it.
namespace Hotkey {

constexpr uint16_t modifiers = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4;
constexpr xcb_keycode_t key = keyCode(KEY_V);

/// Presses it and lets go at once; false when the display does not take keys.
inline bool tap(VirtualKeyboard &keyboard) {
    return keyboard.chord(
        {keyCode(KEY_LEFTCTRL), keyCode(KEY_LEFTALT), keyCode(KEY_LEFTMETA), key});
}

/// Whether another program has it. Nobody can meet the grab that finds it out.
inline bool isTaken(const XConnection &x) {
    xcb_grab_server(x.get());
    const auto asked = xcb_grab_key_checked(x.get(), 0, x.root(), modifiers, key,
                                            XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    xcb_ungrab_key(x.get(), key, x.root(), modifiers);
    xcb_ungrab_server(x.get());
    const XOwned<xcb_generic_error_t> error(xcb_request_check(x.get(), asked));
    return error != nullptr;
}

} // namespace Hotkey
