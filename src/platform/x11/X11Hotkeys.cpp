#include "platform/x11/X11Hotkeys.h"

#include "platform/linux/KeyCodes.h"

#include "platform/x11/XcbXkb.h"

#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>
#include <array>
#include <utility>

namespace {

/// A key that is held repeats at shorter intervals than this. A press after a longer one is a new
/// press, even if the release between was not ours to see (a look for secure input can take it).
constexpr std::chrono::milliseconds longestRepeatDelay{2500};

/// What of an event's state tells hotkeys apart: neither pointer buttons nor the layout group.
constexpr uint16_t modifierBits = 0xff;

} // namespace

X11Hotkeys::X11Hotkeys(std::shared_ptr<X11Connection> x11) : m_x11(std::move(x11)) {
    constexpr std::chrono::milliseconds burst{100};
    m_settle.setSingleShot(true);
    m_settle.setInterval(burst);
    connect(&m_settle, &QTimer::timeout, this, &X11Hotkeys::keyboardChanged);
    m_x11->addHandler([this](const xcb_generic_event_t &event) { return handle(event); });

    // With this a held key repeats as presses only, and its one release is a real one.
    const auto version =
        xcb_xkb_use_extension(*m_x11, XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION);
    const auto flags = xcb_xkb_per_client_flags(
        *m_x11, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT,
        XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT, 0, 0, 0);
    m_masks = readMasks();
    xcb_discard_reply(*m_x11, version.sequence);
    xcb_discard_reply(*m_x11, flags.sequence);
}

void X11Hotkeys::bind(const QList<KeyCombo> &all, std::function<void()> pressed,
                      std::function<void()> released, Outcome outcome) {
    unbind();
    m_pressed = std::move(pressed);
    m_released = std::move(released);
    QList<Refusal> refusals;
    for (const KeyCombo &combo : all) {
        if (const QString reason = add(combo); !reason.isEmpty())
            refusals.append({combo, reason});
    }
    outcome(refusals);
}

/// The reason when it can't be had, else an empty text.
QString X11Hotkeys::add(const KeyCombo &combo) {
    const auto key = KeyCodes::x11FromVirtual(combo.keyCode);
    const uint16_t modifiers = modifierMask(combo);
    if (!key || modifiers == 0)
        return QStringLiteral("is on no key of this keyboard");
    if (!grab(*key, modifiers))
        return QStringLiteral("is taken by another program");
    m_registrations.append({combo, *key, modifiers});
    return {};
}

void X11Hotkeys::unbind() {
    for (const Registration &registration : std::exchange(m_registrations, {}))
        ungrab(registration);
    m_held = 0;
}

std::optional<quint32> X11Hotkeys::virtualKey(quint32 nativeScanCode) const {
    return KeyCodes::virtualFromX11(nativeScanCode);
}

bool X11Hotkeys::handle(const xcb_generic_event_t &event) {
    switch (event.response_type & 0x7f) {
    case XCB_KEY_PRESS:
        keyPressed(reinterpret_cast<const xcb_key_press_event_t &>(event));
        return true;
    case XCB_KEY_RELEASE:
        keyReleased(reinterpret_cast<const xcb_key_release_event_t &>(event));
        return true;
    case XCB_MAPPING_NOTIFY:
        if (reinterpret_cast<const xcb_mapping_notify_event_t &>(event).request !=
            XCB_MAPPING_POINTER)
            m_settle.start();
        return false;
    default:
        return false;
    }
}

void X11Hotkeys::keyPressed(const xcb_key_press_event_t &event) {
    const auto now = X11Connection::Clock::now();
    const bool isRepeat = m_held == event.detail && now - m_lastPress < longestRepeatDelay;
    m_lastPress = now;
    if (isRepeat)
        return;
    const uint16_t locks = XCB_MOD_MASK_LOCK | m_masks.numLock | m_masks.scrollLock;
    const uint16_t modifiers = event.state & modifierBits & static_cast<uint16_t>(~locks);
    for (const Registration &registration : m_registrations) {
        if (registration.key == event.detail && registration.modifiers == modifiers) {
            m_held = event.detail;
            if (const auto pressed = m_pressed) // a copy, since it may bind anew
                pressed();
            return;
        }
    }
}

void X11Hotkeys::keyReleased(const xcb_key_release_event_t &event) {
    if (m_held == 0 || event.detail != m_held)
        return;
    m_held = 0;
    if (const auto released = m_released)
        released();
}

X11Hotkeys::Masks X11Hotkeys::readMasks() const {
    const xcb_setup_t *setup = xcb_get_setup(*m_x11);
    const auto count = static_cast<uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const auto modifiersAsked = xcb_get_modifier_mapping(*m_x11);
    const auto symsAsked = xcb_get_keyboard_mapping(*m_x11, setup->min_keycode, count);
    const XcbPtr<xcb_get_modifier_mapping_reply_t> modifiers(
        xcb_get_modifier_mapping_reply(*m_x11, modifiersAsked, nullptr));
    const XcbPtr<xcb_get_keyboard_mapping_reply_t> syms(
        xcb_get_keyboard_mapping_reply(*m_x11, symsAsked, nullptr));
    Masks masks;
    if (!modifiers || !syms)
        return masks;
    const xcb_keysym_t *allSyms = xcb_get_keyboard_mapping_keysyms(syms.get());
    const auto drives = [&](xcb_keycode_t key, xcb_keysym_t wanted) {
        if (key < setup->min_keycode)
            return false;
        const xcb_keysym_t *first =
            allSyms + (key - setup->min_keycode) * syms->keysyms_per_keycode;
        return std::find(first, first + syms->keysyms_per_keycode, wanted) !=
               first + syms->keysyms_per_keycode;
    };
    const xcb_keycode_t *keys = xcb_get_modifier_mapping_keycodes(modifiers.get());
    const std::array<std::pair<xcb_keysym_t, uint16_t *>, 4> wanted = {
        {{XKB_KEY_Num_Lock, &masks.numLock},
         {XKB_KEY_Scroll_Lock, &masks.scrollLock},
         {XKB_KEY_Alt_L, &masks.alt},
         {XKB_KEY_Super_L, &masks.super}}};
    for (const auto &[sym, mask] : wanted) {
        for (int bit = 0; bit < 8; ++bit) {
            const xcb_keycode_t *first = keys + bit * modifiers->keycodes_per_modifier;
            if (std::any_of(first, first + modifiers->keycodes_per_modifier,
                            [&, s = sym](xcb_keycode_t key) { return drives(key, s); })) {
                *mask = static_cast<uint16_t>(1U << bit);
                break;
            }
        }
    }
    return masks;
}

uint16_t X11Hotkeys::modifierMask(const KeyCombo &combo) const {
    uint16_t mask = 0;
    if (combo.modifiers & HotkeyFormat::cmdKey)
        mask |= m_masks.super;
    if (combo.modifiers & HotkeyFormat::optionKey)
        mask |= m_masks.alt;
    if (combo.modifiers & HotkeyFormat::controlKey)
        mask |= XCB_MOD_MASK_CONTROL;
    if (combo.modifiers & HotkeyFormat::shiftKey)
        mask |= XCB_MOD_MASK_SHIFT;
    return mask;
}

QList<uint16_t> X11Hotkeys::lockVariants() const {
    QList<uint16_t> variants{0};
    for (const uint16_t lock :
         {static_cast<uint16_t>(XCB_MOD_MASK_LOCK), m_masks.numLock, m_masks.scrollLock}) {
        const QList<uint16_t> without = variants;
        for (const uint16_t variant : without) {
            if (!variants.contains(variant | lock))
                variants.append(variant | lock);
        }
    }
    return variants;
}

bool X11Hotkeys::grab(xcb_keycode_t key, uint16_t modifiers) {
    QList<xcb_void_cookie_t> cookies;
    for (const uint16_t locks : lockVariants())
        cookies.append(xcb_grab_key_checked(*m_x11, 0, m_x11->root(), modifiers | locks, key,
                                            XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    bool isFree = true;
    for (const xcb_void_cookie_t cookie : cookies) {
        const XcbPtr<xcb_generic_error_t> error(xcb_request_check(*m_x11, cookie));
        isFree = isFree && !error;
    }
    if (!isFree)
        ungrab({{}, key, modifiers});
    return isFree;
}

void X11Hotkeys::ungrab(const Registration &registration) {
    for (const uint16_t locks : lockVariants())
        xcb_ungrab_key(*m_x11, registration.key, m_x11->root(), registration.modifiers | locks);
    xcb_flush(*m_x11);
}

void X11Hotkeys::keyboardChanged() {
    const Masks masks = readMasks();
    if (masks == m_masks)
        return;
    for (const Registration &registration : m_registrations)
        ungrab(registration);
    m_masks = masks;
    for (Registration &registration : m_registrations) {
        registration.modifiers = modifierMask(registration.combo);
        grab(registration.key, registration.modifiers);
    }
}
