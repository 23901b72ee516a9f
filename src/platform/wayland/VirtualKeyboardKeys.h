#pragma once

#include "platform/Dispatch.h"
#include "platform/PasteKeys.h"
#include "platform/wayland/WaylandConnection.h"

#include <memory>

struct zwp_virtual_keyboard_manager_v1;
struct zwp_virtual_keyboard_v1;

/// Keys through zwp_virtual_keyboard: a keyboard of our own, whose keys and modifiers the
/// compositor keeps apart from those of the user's.
class VirtualKeyboardKeys : public PasteKeys {
public:
    VirtualKeyboardKeys(std::shared_ptr<WaylandConnection> wayland,
                        std::shared_ptr<Dispatch> dispatch);
    ~VirtualKeyboardKeys() override;

    PasteAccess access() const override;
    void requestAccess(std::function<void(const PasteAccess &)> done) override;
    std::optional<KeyLayout> layout() override;
    void settle(std::function<void()> done) override;
    void press(const PasteChord &chord, std::function<void(bool)> done) override;
    std::optional<ScriptedPaste> scriptedPaste() const override;

private:
    bool makeKeyboard();
    void post(const PasteChord &chord, std::function<void(bool)> done);
    void key(uint32_t evdevCode, bool isDown);

    std::shared_ptr<WaylandConnection> m_wayland;
    std::shared_ptr<Dispatch> m_dispatch;
    zwp_virtual_keyboard_manager_v1 *m_manager = nullptr;
    zwp_virtual_keyboard_v1 *m_keyboard = nullptr;
    wl_seat *m_seat = nullptr; ///< the one that m_keyboard stands at; only to compare
    WorkItem m_leadIn;
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
};
