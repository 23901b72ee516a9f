#pragma once

#include "model/HotkeyFormat.h"
#include "platform/Hotkeys.h"

#include <QList>
#include <QObject>
#include <QString>

#include <functional>

/// The system-wide hotkeys; all of them run one handler. Main thread only.
class HotkeyManager : public QObject {
    Q_OBJECT

public:
    static HotkeyManager &shared();

    /// Replaces every registration. Combinations without a key or a modifier are passed over; one
    /// that can't be had is logged and the others still work. `handler` runs in a turn of the event
    /// loop of its own.
    void install(const QList<KeyCombo> &combos, std::function<void()> handler);

    /// Gives every registration back and forgets the handler.
    void uninstall();

    /// Why `combo` fires nothing though it was set: words that go on after it, such as "can't be
    /// used as a hotkey". Empty when nothing is known against it.
    QString problemOf(const KeyCombo &combo) const;

Q_SIGNALS:
    /// Every combination was registered or refused; problemOf() may have changed.
    void installed();

private:
    HotkeyManager() = default;
    void pressed();
    void tellOf(const QList<Hotkeys::Refusal> &refusals);

    std::function<void()> m_handler;
    QList<Hotkeys::Refusal> m_refusals; ///< of the last install()
};
