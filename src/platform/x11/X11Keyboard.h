#pragma once

#include "platform/Keyboard.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Hotkeys.h"

#include <QList>

#include <memory>
#include <mutex>

/// Keys through the XTEST extension. Posting runs on background threads and has a connection of its
/// own for that; the rest uses the main thread's.
class X11Keyboard : public Keyboard {
public:
    X11Keyboard(std::shared_ptr<X11Connection> x11, std::shared_ptr<X11Hotkeys> hotkeys);
    ~X11Keyboard() override;

    bool isTrusted() override { return m_isTrusted; }
    bool isSecureInputActive() override;
    bool isPasswordFieldFocused(std::chrono::milliseconds deadline) override;
    std::optional<KeyLayout> currentLayout() override;
    void settleHeldKeys() override;
    bool postPaste(quint16 vKey) override;
    ScriptedPaste scriptedPaste() const override;

private:
    xcb_connection_t *posting();
    const xcb_get_modifier_mapping_reply_t *modifierMap(xcb_connection_t *connection);
    QList<xcb_keycode_t> modifierKeys(xcb_connection_t *connection);
    QList<xcb_keycode_t> heldAmong(xcb_connection_t *connection,
                                   const QList<xcb_keycode_t> &keys) const;
    void fake(xcb_connection_t *connection, uint8_t type, xcb_keycode_t key) const;
    bool terminalIsFocused(xcb_connection_t *connection) const;

    std::shared_ptr<X11Connection> m_x11;
    std::shared_ptr<X11Hotkeys> m_hotkeys;
    bool m_isTrusted = false;
    std::mutex m_postingMutex;
    xcb_connection_t *m_posting = nullptr;
    XcbPtr<xcb_get_modifier_mapping_reply_t> m_modifierMap; ///< as last told; with m_posting
};
