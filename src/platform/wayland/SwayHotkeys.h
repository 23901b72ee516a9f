#pragma once

#include "platform/Hotkeys.h"
#include "platform/linux/HotkeyHold.h"
#include "platform/wayland/SwayConnection.h"

#include <chrono>

/// Key bindings of sway that are made at run time through its command socket, by place on the
/// keyboard. The user's configuration file stays as it is; its bindings are not taken away.
class SwayHotkeys : public Hotkeys {
public:
    SwayHotkeys();
    ~SwayHotkeys() override;

    QString unavailableBecause() const override { return m_sway.problem(); }
    void bind(const QList<KeyCombo> &all, std::function<void()> pressed,
              std::function<void()> released, Outcome outcome) override;
    void unbind() override;
    std::optional<quint32> virtualKey(quint32 nativeScanCode) const override;

private:
    void happened(SwayConnection::Event event, const QJsonObject &what);
    void keyPressed();
    void keyReleased();
    void bindAll(const Outcome &outcome);
    void bindUntaken(const QString &configuration, const Outcome &outcome);

    SwayConnection m_sway;
    QList<KeyCombo> m_wanted;
    QStringList m_bound; ///< what sway was told, as it is to be told again to be undone
    std::function<void()> m_pressed;
    std::function<void()> m_released;
    Outcome m_outcome;
    quint64 m_generation = 0; ///< of m_wanted; answers to an earlier one are of no interest
    HotkeyHold m_hold;
};
