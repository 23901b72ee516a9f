#pragma once

#include "platform/Hotkeys.h"

/// Hotkeys on a compositor that lets no program choose any: the user binds a key to `brindle paste`
/// in the compositor's own configuration.
class CompositorHotkeys : public Hotkeys {
public:
    /// `reason` says why there is no other way.
    explicit CompositorHotkeys(const QString &reason) : m_reason(reason) {}

    QString unavailableBecause() const override { return m_reason; }
    /// Binds nothing and refuses nothing, since nothing is ours to choose.
    void bind(const QList<KeyCombo> &all, std::function<void()> pressed,
              std::function<void()> released, Outcome outcome) override;
    void unbind() override {}
    /// With the line to put into the configuration of the compositor that XDG_CURRENT_DESKTOP
    /// names.
    std::optional<DesktopsChoice> desktopsChoice() const override;
    std::optional<quint32> virtualKey(quint32) const override { return std::nullopt; }

private:
    QString m_reason;
};
