#include "platform/kde/FakeInputKeys.h"

#include "platform/linux/KeyCodes.h"

#include <fake-input.h>

#include <linux/input-event-codes.h>

#include <utility>

namespace {

/// How long a user may go on holding the hotkey where KWin tells of it. Such a KWin counts who
/// holds a key, so that nobody lets go of it for the user, and paste keys pressed with it paste
/// nothing.
constexpr std::chrono::seconds longestHold{10};

constexpr uint32_t modifierKeys[] = {KEY_LEFTCTRL, KEY_RIGHTCTRL, KEY_LEFTSHIFT, KEY_RIGHTSHIFT,
                                     KEY_LEFTALT,  KEY_RIGHTALT,  KEY_LEFTMETA,  KEY_RIGHTMETA};

constexpr uint32_t x11Offset = 8; // X numbers keys by the kernel's code plus this

} // namespace

FakeInputKeys::FakeInputKeys(std::shared_ptr<WaylandConnection> wayland,
                             std::shared_ptr<const HotkeyHold> hold,
                             std::shared_ptr<Dispatch> dispatch)
    : m_wayland(std::move(wayland)),
      m_dispatch(std::move(dispatch)),
      m_release(std::move(hold), m_dispatch) {
    if (access().state != PasteAccess::State::Ready)
        return;
    m_input =
        holdWayland(m_wayland->bind<org_kde_kwin_fake_input>(org_kde_kwin_fake_input_interface),
                    org_kde_kwin_fake_input_destroy);
    org_kde_kwin_fake_input_authenticate(m_input.get(), "Brindle", "to paste links");
}

FakeInputKeys::~FakeInputKeys() {
    m_deadline.cancel();
}

PasteAccess FakeInputKeys::access() const {
    const auto impossible = [](const QString &reason) {
        return PasteAccess{PasteAccess::State::Impossible, reason};
    };
    if (!m_wayland->isOpen())
        return impossible(m_wayland->problem());
    constexpr uint32_t versionWithKeys = ORG_KDE_KWIN_FAKE_INPUT_KEYBOARD_KEY_SINCE_VERSION;
    if (!m_wayland->offers(org_kde_kwin_fake_input_interface, versionWithKeys))
        return impossible(QStringLiteral("the compositor lets this program press no keys; KWin "
                                         "does when its desktop entry is installed"));
    return {};
}

void FakeInputKeys::requestAccess(std::function<void(const PasteAccess &)> done) {
    done(access());
}

std::optional<KeyLayout> FakeInputKeys::layout() {
    return std::nullopt; // told only to the window in front
}

void FakeInputKeys::settle(std::function<void()> done) {
    m_deadline.cancel();
    m_settled = std::move(done);
    if (!HeldModifiers::areTold(*m_wayland)) {
        m_release.await({}, [this] {
            letGo();
            settled();
        });
        return;
    }
    m_deadline = m_dispatch->after(longestHold, [this] { settled(); });
    m_modifiers = std::make_unique<HeldModifiers>(*m_wayland, [this] { settled(); });
}

/// Where nobody tells which modifiers are held, releasing one that is not does nothing, and a later
/// release by the user neither. The paste keys' letter, which may be the hotkey's too, goes first:
/// one that is down already could not be pressed.
void FakeInputKeys::letGo() {
    if (access().state != PasteAccess::State::Ready)
        return;
    key(KEY_V, false);
    for (const uint32_t modifier : modifierKeys)
        key(modifier, false);
}

void FakeInputKeys::settled() {
    m_deadline.cancel();
    m_modifiers.reset();
    if (const auto done = std::exchange(m_settled, nullptr))
        done();
}

void FakeInputKeys::press(const PasteChord &chord, std::function<void(bool)> done) {
    const auto letter = KeyCodes::x11FromVirtual(chord.vKey);
    if (access().state != PasteAccess::State::Ready || !letter) {
        done(false);
        return;
    }
    key(KEY_LEFTCTRL, true);
    if (chord.withShift)
        key(KEY_LEFTSHIFT, true);
    key(*letter - x11Offset, true);
    key(*letter - x11Offset, false);
    if (chord.withShift)
        key(KEY_LEFTSHIFT, false);
    key(KEY_LEFTCTRL, false);
    m_wayland->sync([alive = std::weak_ptr(m_alive), done = std::move(done)](bool works) {
        if (!alive.expired())
            done(works);
    });
}

void FakeInputKeys::key(uint32_t evdevCode, bool isDown) {
    org_kde_kwin_fake_input_keyboard_key(m_input.get(), evdevCode, isDown ? 1 : 0);
}

std::optional<ScriptedPaste> FakeInputKeys::scriptedPaste() const {
    return std::nullopt; // a program could do no more than this
}
