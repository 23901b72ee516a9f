#pragma once

#include "platform/Hotkeys.h"
#include "platform/linux/HotkeyHold.h"
#include "platform/linux/KeyProbe.h"

#include <QDBusConnection>
#include <QObject>

#include <memory>

/// Hotkeys as custom shortcuts of GNOME's settings, for each of which the desktop runs a command:
/// the program itself, which tells the one that is running. They are there as long as the program
/// runs; what one that was killed has left behind is taken over.
class CustomKeybindings : public QObject, public Hotkeys {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.ostrowind.brindle.Keys")

public:
    /// `command` is what a shortcut runs. `bus` is where `probe` is answered.
    CustomKeybindings(QString command, const QDBusConnection &bus, std::shared_ptr<KeyProbe> probe);
    ~CustomKeybindings() override;

    /// Why they serve nothing here; empty when they do.
    static QString problem();

    void bind(const QList<KeyCombo> &all, std::function<void()> pressed,
              std::function<void()> released, Outcome outcome) override;
    void unbind() override;
    bool pressedByCommand() override;
    std::optional<quint32> virtualKey(quint32 nativeScanCode) const override;

public Q_SLOTS:
    /// The shortcut without modifiers was pressed, so none is held.
    Q_SCRIPTABLE void AreUp();

private:
    void write(const QList<KeyCombo> &all);

    QString m_command;
    QDBusConnection m_bus;
    std::shared_ptr<KeyProbe> m_probe;
    std::function<void()> m_pressed;
    HotkeyHold m_hold;
};
