#include "platform/kde/KWinBackends.h"

#include "platform/kde/FakeInputKeys.h"
#include "platform/kde/PlasmaFrontWindow.h"

KWinBackends::KWinBackends(std::shared_ptr<Dispatch> dispatch,
                           std::shared_ptr<WaylandConnection> wayland)
    : m_dispatch(std::move(dispatch)), m_wayland(std::move(wayland)) {}

Result<std::shared_ptr<PasteKeys>> KWinBackends::fakeInput(std::shared_ptr<const HotkeyHold> hold) {
    const auto keys = std::make_shared<FakeInputKeys>(m_wayland, std::move(hold), m_dispatch);
    if (keys->access().state != PasteAccess::State::Ready)
        return Result<std::shared_ptr<PasteKeys>>::failure(keys->access().reason);
    return std::shared_ptr<PasteKeys>(keys);
}

Result<std::shared_ptr<FrontWindow>> KWinBackends::plasmaWindows() {
    if (const QString problem = PlasmaFrontWindow::problem(*m_wayland); !problem.isEmpty())
        return Result<std::shared_ptr<FrontWindow>>::failure(problem);
    return std::shared_ptr<FrontWindow>(std::make_shared<PlasmaFrontWindow>(m_wayland));
}
