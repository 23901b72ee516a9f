#include "platform/wayland/VirtualKeyboardKeys.h"

#include "platform/linux/KeyCodes.h"
#include "platform/wayland/Descriptor.h"

#include <virtual-keyboard-unstable-v1.h>

#include <linux/input-event-codes.h>
#include <sys/mman.h>

#include <string_view>

namespace {

/// What programs need to learn of the first keyboard that a seat gets; a key before that is lost.
constexpr std::chrono::milliseconds leadIn{100};

/// A whole keyboard: programs look for more in a map than the keys that are pressed. The compositor
/// compiles it.
constexpr std::string_view keymap =
    "xkb_keymap { xkb_keycodes { include \"evdev+aliases(qwerty)\" }; "
    "xkb_types { include \"complete\" }; xkb_compat { include \"complete\" }; "
    "xkb_symbols { include \"pc+us+inet(evdev)\" }; };";

/// Bits of the modifiers, as every keymap of the toolkit's rules has them.
enum Modifier : uint32_t { ShiftModifier = 1, ControlModifier = 4 };

constexpr uint32_t x11Offset = 8; // X numbers keys by the kernel's code plus this

} // namespace

VirtualKeyboardKeys::VirtualKeyboardKeys(std::shared_ptr<WaylandConnection> wayland,
                                         std::shared_ptr<Dispatch> dispatch)
    : m_wayland(std::move(wayland)), m_dispatch(std::move(dispatch)) {
    if (access().state == PasteAccess::State::Ready)
        m_manager = m_wayland->bind<zwp_virtual_keyboard_manager_v1>(
            zwp_virtual_keyboard_manager_v1_interface);
}

VirtualKeyboardKeys::~VirtualKeyboardKeys() {
    m_leadIn.cancel();
    if (m_keyboard)
        zwp_virtual_keyboard_v1_destroy(m_keyboard);
    if (m_manager)
        zwp_virtual_keyboard_manager_v1_destroy(m_manager);
}

PasteAccess VirtualKeyboardKeys::access() const {
    const auto impossible = [](const QString &reason) {
        return PasteAccess{PasteAccess::State::Impossible, reason};
    };
    if (!m_wayland->isOpen())
        return impossible(m_wayland->problem());
    if (!m_wayland->offers(zwp_virtual_keyboard_manager_v1_interface))
        return impossible(QStringLiteral("the compositor offers no virtual keyboard"));
    if (!m_wayland->seats().best())
        return impossible(QStringLiteral("the compositor has no seat"));
    return {};
}

void VirtualKeyboardKeys::requestAccess(std::function<void(const PasteAccess &)> done) {
    done(access());
}

std::optional<KeyLayout> VirtualKeyboardKeys::layout() {
    return std::nullopt; // our keyboard has its own
}

void VirtualKeyboardKeys::settle(std::function<void()> done) {
    done(); // what is held on other keyboards does not show on ours
}

/// The keyboard stays: without one that was used last, the seat would have no keymap until the user
/// presses a key.
bool VirtualKeyboardKeys::makeKeyboard() {
    const Descriptor memory(memfd_create("keymap", MFD_CLOEXEC));
    const auto size = static_cast<uint32_t>(keymap.size() + 1); // with the end mark
    if (write(memory.number(), keymap.data(), size) != ssize_t(size))
        return false;
    if (m_keyboard)
        zwp_virtual_keyboard_v1_destroy(m_keyboard);
    m_seat = m_wayland->seats().best();
    m_keyboard = zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(m_manager, m_seat);
    zwp_virtual_keyboard_v1_keymap(m_keyboard, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, memory.number(),
                                   size);
    return true;
}

void VirtualKeyboardKeys::press(const PasteChord &chord, std::function<void(bool)> done) {
    if (access().state != PasteAccess::State::Ready) {
        done(false);
        return;
    }
    if (m_keyboard && m_seat == m_wayland->seats().best()) {
        post(chord, std::move(done));
        return;
    }
    const bool isFirst = !m_wayland->seats().bestHasKeyboard();
    if (!makeKeyboard()) {
        done(false);
        return;
    }
    if (!isFirst) {
        post(chord, std::move(done));
        return;
    }
    m_wayland->handleEvents();
    m_leadIn = m_dispatch->after(leadIn, [this, chord, done] { post(chord, done); });
}

void VirtualKeyboardKeys::post(const PasteChord &chord, std::function<void(bool)> done) {
    const auto letter = KeyCodes::x11FromVirtual(chord.vKey);
    if (!letter) {
        done(false);
        return;
    }
    // Keys carry no state by themselves.
    const auto modifiers = [this](uint32_t down) {
        zwp_virtual_keyboard_v1_modifiers(m_keyboard, down, 0, 0, 0);
    };
    key(KEY_LEFTCTRL, true);
    if (chord.withShift)
        key(KEY_LEFTSHIFT, true);
    modifiers(chord.withShift ? ControlModifier | ShiftModifier : ControlModifier);
    key(*letter - x11Offset, true);
    key(*letter - x11Offset, false);
    if (chord.withShift)
        key(KEY_LEFTSHIFT, false);
    key(KEY_LEFTCTRL, false);
    modifiers(0);
    m_wayland->sync([alive = std::weak_ptr(m_alive), done = std::move(done)](bool works) {
        if (!alive.expired())
            done(works);
    });
}

void VirtualKeyboardKeys::key(uint32_t evdevCode, bool isDown) {
    const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(
        Dispatch::Clock::now().time_since_epoch());
    zwp_virtual_keyboard_v1_key(m_keyboard, static_cast<uint32_t>(time.count()), evdevCode,
                                isDown ? WL_KEYBOARD_KEY_STATE_PRESSED
                                       : WL_KEYBOARD_KEY_STATE_RELEASED);
}

std::optional<ScriptedPaste> VirtualKeyboardKeys::scriptedPaste() const {
    return std::nullopt; // a program could do no more than this
}
