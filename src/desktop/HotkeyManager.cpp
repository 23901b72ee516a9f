#include "desktop/HotkeyManager.h"

#include "platform/Platform.h"
#include "platform/wording.h"
#include "storage/LogStore.h"

HotkeyManager &HotkeyManager::shared() {
    static HotkeyManager manager;
    return manager;
}

void HotkeyManager::install(const QList<KeyCombo> &combos, std::function<void()> handler) {
    m_handler = std::move(handler);
    QList<KeyCombo> all = combos;
    all.removeIf([](const KeyCombo &combo) { return !combo.isSet(); });
    Platform::current().hotkeys->bind(
        all, [this] { pressed(); }, nullptr,
        [this](const QList<Hotkeys::Refusal> &refusals) { tellOf(refusals); });
}

void HotkeyManager::tellOf(const QList<Hotkeys::Refusal> &refusals) {
    m_refusals = refusals;
    for (const auto &[combo, reason] : refusals)
        log(QStringLiteral("hotkey: %1 %2")
                .arg(wording().describeHotkey(combo.keyCode, combo.modifiers), reason));
    Q_EMIT installed();
}

void HotkeyManager::uninstall() {
    Platform::current().hotkeys->unbind();
    m_handler = nullptr;
}

QString HotkeyManager::problemOf(const KeyCombo &combo) const {
    if (combo.modifiers != 0 && !combo.isSet())
        return QStringLiteral("can't be used as a hotkey");
    for (const Hotkeys::Refusal &refusal : m_refusals) {
        if (refusal.combo == combo)
            return refusal.reason;
    }
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
