#pragma once

#include "platform/Dispatch.h"
#include "platform/PasteKeys.h"
#include "platform/kde/HeldModifiers.h"
#include "platform/linux/HotkeyRelease.h"

struct org_kde_kwin_fake_input;

/// Keys through KWin's fake input. To the applications they are those of the user's keyboard: the
/// layout in force applies to them, and so do the modifiers that are held.
class FakeInputKeys : public PasteKeys {
public:
    /// `hold` tells of the hotkey.
    FakeInputKeys(std::shared_ptr<WaylandConnection> wayland,
                  std::shared_ptr<const HotkeyHold> hold, std::shared_ptr<Dispatch> dispatch);
    ~FakeInputKeys() override;

    PasteAccess access() const override;
    void requestAccess(std::function<void(const PasteAccess &)> done) override;
    std::optional<KeyLayout> layout() override;
    void settle(std::function<void()> done) override;
    void press(const PasteChord &chord, std::function<void(bool)> done) override;
    std::optional<ScriptedPaste> scriptedPaste() const override;

private:
    void settled();
    void letGo();
    void key(uint32_t evdevCode, bool isDown);

    std::shared_ptr<WaylandConnection> m_wayland;
    std::shared_ptr<Dispatch> m_dispatch;
    HotkeyRelease m_release;
    WaylandObject<org_kde_kwin_fake_input> m_input;
    std::function<void()> m_settled; ///< what waits for the keys to be up
    std::unique_ptr<HeldModifiers> m_modifiers;
    WorkItem m_deadline;
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
};
