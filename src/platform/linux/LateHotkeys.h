#pragma once

#include "platform/Hotkeys.h"

#include <memory>

/// Hotkeys on a desktop that has to be asked first which way there is. What is bound meanwhile is
/// bound when it has answered. Main thread.
class LateHotkeys : public Hotkeys {
public:
    using Found = std::function<void(std::shared_ptr<Hotkeys>)>;

    /// `find` calls its argument once, later than this.
    explicit LateHotkeys(const std::function<void(Found)> &find);

    QString unavailableBecause() const override;
    void bind(const QList<KeyCombo> &all, std::function<void()> pressed,
              std::function<void()> released, Outcome outcome) override;
    void unbind() override;
    bool pressedByCommand() override;
    std::optional<DesktopsChoice> desktopsChoice() const override;
    std::optional<quint32> virtualKey(quint32 nativeScanCode) const override;

private:
    std::shared_ptr<Hotkeys> m_found;
    std::function<void()> m_bind; ///< what waits until they are found
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
};
