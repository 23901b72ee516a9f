#include "platform/linux/LateHotkeys.h"

#include <utility>

LateHotkeys::LateHotkeys(const std::function<void(Found)> &find) {
    find([this, alive = std::weak_ptr(m_alive)](std::shared_ptr<Hotkeys> found) {
        if (alive.expired())
            return;
        m_found = std::move(found);
        if (const auto bindNow = std::exchange(m_bind, nullptr))
            bindNow();
    });
}

QString LateHotkeys::unavailableBecause() const {
    return m_found ? m_found->unavailableBecause() : QString();
}

void LateHotkeys::bind(const QList<KeyCombo> &all, std::function<void()> pressed,
                       std::function<void()> released, Outcome outcome) {
    m_bind = [=, this] { m_found->bind(all, pressed, released, outcome); };
    if (m_found)
        std::exchange(m_bind, nullptr)();
}

void LateHotkeys::unbind() {
    m_bind = nullptr;
    if (m_found)
        m_found->unbind();
}

bool LateHotkeys::pressedByCommand() {
    return m_found && m_found->pressedByCommand();
}

std::optional<Hotkeys::DesktopsChoice> LateHotkeys::desktopsChoice() const {
    return m_found ? m_found->desktopsChoice() : std::nullopt;
}

std::optional<quint32> LateHotkeys::virtualKey(quint32 nativeScanCode) const {
    return m_found ? m_found->virtualKey(nativeScanCode) : std::nullopt;
}
