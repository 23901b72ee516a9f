#include "platform/x11/X11PasteKeys.h"

#include "platform/linux/KeyCodes.h"
#include "platform/x11/XkbLayout.h"

#include <xcb/xtest.h>

#include <algorithm>

namespace {

/// How long a user may go on holding the hotkey before we let go of it for them.
constexpr std::chrono::milliseconds longestHold{1000};

/// Between two looks at the keyboard while it is held.
constexpr std::chrono::milliseconds holdPoll{3};

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

X11PasteKeys::X11PasteKeys(std::shared_ptr<X11Connection> x11, std::shared_ptr<X11Hotkeys> hotkeys,
                           std::shared_ptr<Dispatch> dispatch)
    : m_x11(std::move(x11)), m_hotkeys(std::move(hotkeys)), m_dispatch(std::move(dispatch)) {
    const xcb_query_extension_reply_t *xtest = xcb_get_extension_data(*m_x11, &xcb_test_id);
    m_hasXTest = xtest && xtest->present;
    // Every client is told of a new map.
    m_x11->addHandler([this](const xcb_generic_event_t &event) {
        if ((event.response_type & 0x7f) == XCB_MAPPING_NOTIFY)
            m_modifierMap.reset();
        return false;
    });
}

X11PasteKeys::~X11PasteKeys() {
    m_nextLook.cancel();
}

PasteAccess X11PasteKeys::access() const {
    if (m_hasXTest)
        return {};
    return {
        PasteAccess::State::Impossible,
        QStringLiteral("the X server has no XTEST extension, without which no program can press "
                       "keys")};
}

void X11PasteKeys::requestAccess(std::function<void(const PasteAccess &)> done) {
    done(access());
}

std::optional<KeyLayout> X11PasteKeys::layout() {
    return XkbLayout::read(*m_x11);
}

const xcb_get_modifier_mapping_reply_t *X11PasteKeys::modifierMap() {
    if (!m_modifierMap)
        m_modifierMap.reset(
            xcb_get_modifier_mapping_reply(*m_x11, xcb_get_modifier_mapping(*m_x11), nullptr));
    return m_modifierMap.get();
}

QList<xcb_keycode_t> X11PasteKeys::modifierKeys() {
    QList<xcb_keycode_t> keys;
    const auto *map = modifierMap();
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

QList<xcb_keycode_t> X11PasteKeys::heldAmong(const QList<xcb_keycode_t> &keys) const {
    QList<xcb_keycode_t> held;
    const XcbPtr<xcb_query_keymap_reply_t> map(
        xcb_query_keymap_reply(*m_x11, xcb_query_keymap(*m_x11), nullptr));
    if (!map)
        return held;
    for (const xcb_keycode_t key : keys) {
        if (map->keys[key / 8] & (1U << (key % 8)))
            held.append(key);
    }
    return held;
}

void X11PasteKeys::settle(std::function<void()> done) {
    m_nextLook.cancel();
    QList<xcb_keycode_t> keys = modifierKeys();
    if (const xcb_keycode_t hotkey = m_hotkeys->heldKey())
        keys.append(hotkey);
    lookAgain(keys, m_dispatch->now() + longestHold, done);
}

void X11PasteKeys::lookAgain(const QList<xcb_keycode_t> &keys, Dispatch::Clock::time_point deadline,
                             const std::function<void()> &done) {
    const QList<xcb_keycode_t> held = heldAmong(keys);
    if (!held.isEmpty() && m_dispatch->now() < deadline) {
        m_nextLook = m_dispatch->after(
            holdPoll, [this, keys, deadline, done] { lookAgain(keys, deadline, done); });
        return;
    }
    letGoOf(held);
    done();
}

void X11PasteKeys::letGoOf(QList<xcb_keycode_t> held) {
    // The hotkey's own key goes first: it ends the server's loan of the keyboard to us and the
    // repeating, which would type into the application once the modifiers are up. None is pressed
    // again afterwards: that would leave them down on the faking device.
    std::stable_partition(held.begin(), held.end(),
                          [this](xcb_keycode_t key) { return key == m_hotkeys->heldKey(); });
    for (const xcb_keycode_t key : std::as_const(held))
        fake(XCB_KEY_RELEASE, key);
    xcb_flush(*m_x11);
}

void X11PasteKeys::fake(uint8_t type, xcb_keycode_t key) const {
    xcb_test_fake_input(*m_x11, type, key, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
}

void X11PasteKeys::press(const PasteChord &chord, std::function<void(bool)> done) {
    done(post(chord));
}

bool X11PasteKeys::post(const PasteChord &chord) {
    const auto letter = KeyCodes::x11FromVirtual(chord.vKey);
    const auto *map = modifierMap();
    const xcb_keycode_t control =
        map ? firstKeyOf(*map, ControlRow) : static_cast<xcb_keycode_t>(0);
    if (!m_hasXTest || !letter || control == 0)
        return false;
    QList<xcb_keycode_t> keys{control};
    if (const xcb_keycode_t shift = firstKeyOf(*map, ShiftRow); chord.withShift && shift)
        keys.append(shift);
    keys.append(*letter);
    for (auto key = keys.cbegin(); key != keys.cend(); ++key)
        fake(XCB_KEY_PRESS, *key);
    for (auto key = keys.crbegin(); key != keys.crend(); ++key)
        fake(XCB_KEY_RELEASE, *key);
    // The reply comes when the server has worked through all of them.
    return XcbPtr<xcb_get_input_focus_reply_t>(
               xcb_get_input_focus_reply(*m_x11, xcb_get_input_focus(*m_x11), nullptr)) != nullptr;
}

std::optional<ScriptedPaste> X11PasteKeys::scriptedPaste() const {
    return ScriptedPaste{QStringLiteral("xdotool"),
                         {QStringLiteral("key"), QStringLiteral("ctrl+v")}};
}
