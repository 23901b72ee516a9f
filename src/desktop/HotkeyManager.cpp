#include "desktop/HotkeyManager.h"

#include "platform/Platform.h"
#include "platform/wording.h"
#include "storage/LogStore.h"

HotkeyManager &HotkeyManager::shared() {
    static HotkeyManager manager;
    return manager;
}

void HotkeyManager::install(const QList<KeyCombo> &combos, std::function<void()> handler) {
    uninstall();
    m_handler = std::move(handler);
    m_unavailable.clear();
    for (const KeyCombo &combo : combos) {
        if (!combo.isSet())
            continue;
        if (Platform::current().hotkeys->add(combo, [this] { pressed(); }))
            continue;
        m_unavailable.append(combo);
        log(QStringLiteral("hotkey: %1 %2")
                .arg(wording().describeHotkey(combo.keyCode, combo.modifiers), problemOf(combo)));
    }
    Q_EMIT installed();
}

void HotkeyManager::uninstall() {
    Platform::current().hotkeys->removeAll();
    m_handler = nullptr;
}

QString HotkeyManager::problemOf(const KeyCombo &combo) const {
    if (combo.modifiers != 0 && !combo.isSet())
        return QStringLiteral("can't be used as a hotkey");
    if (m_unavailable.contains(combo))
        return QStringLiteral("is not available (taken by another program, or no such key)");
    return {};
}

void HotkeyManager::pressed() {
    // A later turn, so that a run never starts inside the delivery of the event.
    Platform::current().dispatch->toMain([this] {
        // A copy, since the handler may install anew.
        if (const auto handler = m_handler)
            handler();
    });
}
