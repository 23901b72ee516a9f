#include "platform/kde/KdeBackends.h"

#include "platform/kde/KGlobalAccelHotkeys.h"

Result<std::shared_ptr<Hotkeys>> KdeBackends::globalAccel() {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (const QString problem = KGlobalAccelHotkeys::problem(bus); !problem.isEmpty())
        return Result<std::shared_ptr<Hotkeys>>::failure(problem);
    m_hotkeys = std::make_shared<KGlobalAccelHotkeys>(bus);
    return std::shared_ptr<Hotkeys>(m_hotkeys);
}

std::shared_ptr<const HotkeyHold>
KdeBackends::holdOr(std::shared_ptr<const HotkeyHold> others) const {
    return m_hotkeys ? m_hotkeys->hold() : others;
}
