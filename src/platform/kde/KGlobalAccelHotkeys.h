#pragma once

#include "platform/Hotkeys.h"
#include "platform/linux/HotkeyHold.h"

#include <QDBusConnection>
#include <QObject>

#include <memory>

class QDBusMessage;

/// Hotkeys through KDE's service of global shortcuts. Each is an action of ours there, named after
/// its combination, so that what it was before never stands in its way.
class KGlobalAccelHotkeys : public QObject, public Hotkeys {
    Q_OBJECT

public:
    explicit KGlobalAccelHotkeys(const QDBusConnection &bus);
    ~KGlobalAccelHotkeys() override;

    /// Why the service does not serve this desktop; empty when it does.
    static QString problem(const QDBusConnection &bus);

    void bind(const QList<KeyCombo> &all, std::function<void()> pressed,
              std::function<void()> released, Outcome outcome) override;
    void unbind() override;
    std::optional<quint32> virtualKey(quint32 nativeScanCode) const override;

    /// Whether a hotkey is held, as long as somebody asks.
    std::shared_ptr<const HotkeyHold> hold() const { return m_hold; }

private Q_SLOTS:
    void keyPressed();
    void keyReleased();

private:
    using Answered = std::function<void(const QDBusMessage &)>;
    using Bound = std::function<void(const QString &refusal)>;

    void call(const QString &method, const QVariantList &arguments, Answered answered);
    void tell(const QString &method, const QVariantList &arguments);
    void bindAll(const Outcome &outcome);
    void bindOne(const KeyCombo &combo, const Bound &done);
    void forget(const KeyCombo &combo);
    void restarted();

    QDBusConnection m_bus;
    QList<KeyCombo> m_wanted;
    QList<KeyCombo> m_known; ///< what the service has a key for, also when it is not in force
    std::function<void()> m_pressed;
    std::function<void()> m_released;
    Outcome m_outcome;
    int m_generation = 0; ///< what is answered to an earlier one is stale
    std::shared_ptr<HotkeyHold> m_hold = std::make_shared<HotkeyHold>();
};
