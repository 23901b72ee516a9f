#include "platform/x11/X11Keyboard.h"

#include "platform/linux/AccessibleFocus.h"
#include "platform/linux/KeyCodes.h"
#include "platform/linux/Terminals.h"
#include "platform/wording.h"
#include "platform/x11/XkbLayout.h"

#include <xcb/xtest.h>

#include <algorithm>
#include <thread>

namespace {

using Clock = X11Connection::Clock;

/// How long a user may go on holding the hotkey before we let go of it for them.
constexpr std::chrono::milliseconds longestHold{1000};

/// Between two looks at the keyboard while it is held.
constexpr std::chrono::milliseconds holdPoll{3};

/// A menu that started the run may hold the keyboard until it has closed.
constexpr std::chrono::milliseconds menuCloses{100};

/// Right-hand keys of the standard modifiers come second in the map; the first does.
enum ModifierRow { ShiftRow = 0, LockRow = 1, ControlRow = 2, RowCount = 8 };

xcb_keycode_t firstKeyOf(const xcb_get_modifier_mapping_reply_t &map, int row) {
    const xcb_keycode_t *keys =
        xcb_get_modifier_mapping_keycodes(&map) + row * map.keycodes_per_modifier;
    const auto *end = keys + map.keycodes_per_modifier;
    const auto *key = std::find_if(keys, end, [](xcb_keycode_t code) { return code != 0; });
    return key == end ? static_cast<xcb_keycode_t>(0) : *key;
}

} // namespace

X11Keyboard::X11Keyboard(std::shared_ptr<X11Connection> x11, std::shared_ptr<X11Hotkeys> hotkeys)
    : m_x11(std::move(x11)), m_hotkeys(std::move(hotkeys)) {
    if (!m_x11->isOpen())
        return;
    const xcb_query_extension_reply_t *xtest = xcb_get_extension_data(*m_x11, &xcb_test_id);
    m_isTrusted = xtest && xtest->present;
}

X11Keyboard::~X11Keyboard() {
    if (m_posting)
        xcb_disconnect(m_posting);
}

xcb_connection_t *X11Keyboard::posting() {
    if (!m_posting)
        m_posting = xcb_connect(nullptr, nullptr);
    return xcb_connection_has_error(m_posting) ? nullptr : m_posting;
}

bool X11Keyboard::isSecureInputActive() {
    if (!m_x11->isOpen())
        return false;
    // While our own hotkey is held nobody else can hold the keyboard, and trying would end our
    // hold.
    if (m_hotkeys->heldKey())
        return false;
    const auto deadline = Clock::now() + menuCloses;
    for (;;) {
        const auto cookie = xcb_grab_keyboard(*m_x11, 0, m_x11->root(), XCB_CURRENT_TIME,
                                              XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        const XcbPtr<xcb_grab_keyboard_reply_t> reply(
            xcb_grab_keyboard_reply(*m_x11, cookie, nullptr));
        if (reply && reply->status == XCB_GRAB_STATUS_SUCCESS) {
            xcb_ungrab_keyboard(*m_x11, XCB_CURRENT_TIME);
            xcb_flush(*m_x11);
            return false;
        }
        if (Clock::now() >= deadline)
            return reply && reply->status == XCB_GRAB_STATUS_ALREADY_GRABBED;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

bool X11Keyboard::isPasswordFieldFocused(std::chrono::milliseconds deadline) {
    return AccessibleFocus::isPasswordField(deadline);
}

std::optional<KeyLayout> X11Keyboard::currentLayout() {
    if (!m_x11->isOpen())
        return std::nullopt;
    return XkbLayout::read(*m_x11);
}

const xcb_get_modifier_mapping_reply_t *X11Keyboard::modifierMap(xcb_connection_t *connection) {
    // Every client is told of a new map; what the server has sent is there after any reply.
    while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection)}) {
        if ((event->response_type & 0x7f) == XCB_MAPPING_NOTIFY)
            m_modifierMap.reset();
    }
    if (!m_modifierMap)
        m_modifierMap.reset(xcb_get_modifier_mapping_reply(
            connection, xcb_get_modifier_mapping(connection), nullptr));
    return m_modifierMap.get();
}

QList<xcb_keycode_t> X11Keyboard::modifierKeys(xcb_connection_t *connection) {
    QList<xcb_keycode_t> keys;
    const auto *map = modifierMap(connection);
    if (!map)
        return keys;
    const xcb_keycode_t *all = xcb_get_modifier_mapping_keycodes(map);
    for (int row = 0; row < RowCount; ++row) {
        for (int i = 0; row != LockRow && i < map->keycodes_per_modifier; ++i) {
            if (const xcb_keycode_t key = all[row * map->keycodes_per_modifier + i])
                keys.append(key);
        }
    }
    return keys;
}

QList<xcb_keycode_t> X11Keyboard::heldAmong(xcb_connection_t *connection,
                                            const QList<xcb_keycode_t> &keys) const {
    QList<xcb_keycode_t> held;
    const XcbPtr<xcb_query_keymap_reply_t> map(
        xcb_query_keymap_reply(connection, xcb_query_keymap(connection), nullptr));
    if (!map)
        return held;
    for (const xcb_keycode_t key : keys) {
        if (map->keys[key / 8] & (1U << (key % 8)))
            held.append(key);
    }
    return held;
}

void X11Keyboard::settleHeldKeys() {
    const std::scoped_lock lock(m_postingMutex);
    xcb_connection_t *connection = posting();
    if (!connection)
        return;
    QList<xcb_keycode_t> keys = modifierKeys(connection);
    const xcb_keycode_t hotkey = m_hotkeys->heldKey();
    if (hotkey != 0)
        keys.append(hotkey);
    const auto deadline = Clock::now() + longestHold;
    QList<xcb_keycode_t> held = heldAmong(connection, keys);
    while (!held.isEmpty() && Clock::now() < deadline) {
        std::this_thread::sleep_for(holdPoll);
        held = heldAmong(connection, keys);
    }
    if (held.isEmpty())
        return;
    // The hotkey's own key goes first: it ends the server's loan of the keyboard to us and the
    // repeating, which would type into the application once the modifiers are up. None is pressed
    // again afterwards: that would leave them down on the faking device.
    std::stable_partition(held.begin(), held.end(),
                          [&](xcb_keycode_t key) { return key == hotkey; });
    for (const xcb_keycode_t key : held)
        fake(connection, XCB_KEY_RELEASE, key);
    xcb_flush(connection);
}

void X11Keyboard::fake(xcb_connection_t *connection, uint8_t type, xcb_keycode_t key) const {
    xcb_test_fake_input(connection, type, key, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
}

bool X11Keyboard::postPaste(quint16 vKey) {
    const std::scoped_lock lock(m_postingMutex);
    xcb_connection_t *connection = posting();
    const auto letter = KeyCodes::x11FromVirtual(vKey);
    if (!connection || !letter)
        return false;
    const auto *map = modifierMap(connection);
    const xcb_keycode_t control =
        map ? firstKeyOf(*map, ControlRow) : static_cast<xcb_keycode_t>(0);
    if (control == 0)
        return false;
    QList<xcb_keycode_t> chord{control};
    if (const xcb_keycode_t shift = firstKeyOf(*map, ShiftRow);
        shift && terminalIsFocused(connection))
        chord.append(shift);
    chord.append(*letter);
    for (auto key = chord.cbegin(); key != chord.cend(); ++key)
        fake(connection, XCB_KEY_PRESS, *key);
    for (auto key = chord.crbegin(); key != chord.crend(); ++key)
        fake(connection, XCB_KEY_RELEASE, *key);
    // The reply comes when the server has worked through all of them.
    return XcbPtr<xcb_get_input_focus_reply_t>(xcb_get_input_focus_reply(
               connection, xcb_get_input_focus(connection), nullptr)) != nullptr;
}

bool X11Keyboard::terminalIsFocused(xcb_connection_t *connection) const {
    const XcbPtr<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    xcb_window_t window = focus ? focus->focus : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
    // The focus is often on a child of the window that carries the class.
    while (window > XCB_INPUT_FOCUS_POINTER_ROOT && window != m_x11->root()) {
        constexpr uint32_t longestClass = 256;
        const auto classAsked = xcb_get_property(connection, 0, window, XCB_ATOM_WM_CLASS,
                                                 XCB_ATOM_STRING, 0, longestClass);
        const auto treeAsked = xcb_query_tree(connection, window);
        const XcbPtr<xcb_get_property_reply_t> wmClass(
            xcb_get_property_reply(connection, classAsked, nullptr));
        const XcbPtr<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(connection, treeAsked, nullptr));
        if (wmClass && wmClass->value_len > 0)
            return Terminals::isTerminal(
                QByteArray(static_cast<const char *>(xcb_get_property_value(wmClass.get())),
                           xcb_get_property_value_length(wmClass.get())));
        window = tree ? tree->parent : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
    }
    return false;
}

ScriptedPaste X11Keyboard::scriptedPaste() const {
    return {wording().pasteProgram, {QStringLiteral("key"), QStringLiteral("ctrl+v")}};
}
