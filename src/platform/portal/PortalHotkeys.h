#pragma once

#include "platform/Defaults.h"
#include "platform/Hotkeys.h"
#include "platform/linux/HotkeyHold.h"
#include "platform/linux/KeyProbe.h"
#include "platform/portal/PortalSession.h"
#include "platform/portal/PortalShortcut.h"

#include <QDBusMessage>

/// Hotkeys through the portal's GlobalShortcuts. The combinations are proposals: the user sees them
/// in a dialog of the desktop at the first bind(), and may choose others there and later. One that
/// is dismissed does not come again by itself.
class PortalHotkeys : public QObject, public Hotkeys {
    Q_OBJECT

public:
    struct Tools {
        std::shared_ptr<PortalConnection> portal;
        std::shared_ptr<Defaults> defaults; ///< remembers that the user dismissed the dialog
        std::shared_ptr<HotkeyHold> hold;   ///< is told of presses and releases
        std::shared_ptr<KeyProbe> probe;
        /// What the user can do where the desktop does not tell the key it has given.
        std::optional<DesktopsChoice> untold;
    };

    static QString interfaceName();

    explicit PortalHotkeys(Tools tools);

    QString unavailableBecause() const override { return m_problem; }
    void bind(const QList<KeyCombo> &all, std::function<void()> pressed,
              std::function<void()> released, Outcome outcome) override;
    bool bindsSilently() const override { return false; }
    void unbind() override;
    /// The portal's own words for the keys, once it has told them.
    std::optional<DesktopsChoice> desktopsChoice() const override;
    std::optional<quint32> virtualKey(quint32) const override { return std::nullopt; }

private Q_SLOTS:
    void activated(const QDBusMessage &signal);
    void deactivated(const QDBusMessage &signal);
    void shortcutsChanged(const QDBusMessage &signal);

private:
    void askDesktop();
    void bindShortcuts();
    void answered(const PortalRequest::Answer &answer);
    void ended();
    void takeOver(const QList<PortalShortcut> &shortcuts);
    void refuse(const QString &problem);
    void tell(const QList<Refusal> &refusals);
    void portalAppeared();
    QList<PortalShortcut> wantedShortcuts() const;
    /// Which of our shortcuts the signal is of; empty for one of another session.
    QString shortcutOf(const QDBusMessage &signal) const;

    Tools m_tools;
    std::unique_ptr<PortalSession> m_session;
    QList<KeyCombo> m_wanted;
    std::function<void()> m_pressed;
    std::function<void()> m_released;
    Outcome m_outcome;
    bool m_isBound = false;
    QString m_problem;
    QString m_trigger; ///< as the desktop calls the keys; empty when it does not tell
    std::chrono::milliseconds m_pause; ///< before the shortcuts are bound anew
    HotkeyHold::Clock::time_point m_boundAt;
};
