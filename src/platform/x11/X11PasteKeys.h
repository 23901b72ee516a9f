#pragma once

#include "platform/Dispatch.h"
#include "platform/PasteKeys.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Hotkeys.h"

#include <QList>

#include <memory>

/// Keys through the XTEST extension.
class X11PasteKeys : public PasteKeys {
public:
    X11PasteKeys(std::shared_ptr<X11Connection> x11, std::shared_ptr<X11Hotkeys> hotkeys,
                 std::shared_ptr<Dispatch> dispatch);
    ~X11PasteKeys() override;

    PasteAccess access() const override;
    void requestAccess(std::function<void(const PasteAccess &)> done) override;
    std::optional<KeyLayout> layout() override;
    void settle(std::function<void()> done) override;
    void press(const PasteChord &chord, std::function<void(bool)> done) override;
    std::optional<ScriptedPaste> scriptedPaste() const override;

private:
    const xcb_get_modifier_mapping_reply_t *modifierMap();
    QList<xcb_keycode_t> modifierKeys();
    QList<xcb_keycode_t> heldAmong(const QList<xcb_keycode_t> &keys) const;
    void lookAgain(const QList<xcb_keycode_t> &keys, Dispatch::Clock::time_point deadline,
                   const std::function<void()> &done);
    void letGoOf(QList<xcb_keycode_t> held);
    bool post(const PasteChord &chord);
    void fake(uint8_t type, xcb_keycode_t key) const;

    std::shared_ptr<X11Connection> m_x11;
    std::shared_ptr<X11Hotkeys> m_hotkeys;
    std::shared_ptr<Dispatch> m_dispatch;
    bool m_hasXTest = false;
    XcbPtr<xcb_get_modifier_mapping_reply_t> m_modifierMap; ///< as last told
    WorkItem m_nextLook;
};
