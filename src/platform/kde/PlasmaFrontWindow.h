#pragma once

#include "platform/FrontWindow.h"
#include "platform/wayland/WaylandConnection.h"

#include <memory>
#include <vector>

struct org_kde_plasma_window;
struct org_kde_plasma_window_management;

/// The window that KWin calls active, by Plasma's window management.
class PlasmaFrontWindow : public FrontWindow {
public:
    explicit PlasmaFrontWindow(std::shared_ptr<WaylandConnection> wayland);
    ~PlasmaFrontWindow() override;

    void find(std::function<void(Kind)> done) override;

    /// Why the compositor tells no windows; empty when it does.
    static QString problem(const WaylandConnection &wayland);

private:
    struct Window {
        PlasmaFrontWindow *front;
        WaylandObject<org_kde_plasma_window> object;
        QByteArray appId;
        bool isActive = false;
    };

    void add(const char *uuid);

    std::shared_ptr<WaylandConnection> m_wayland;
    WaylandObject<org_kde_plasma_window_management> m_management;
    std::vector<std::unique_ptr<Window>> m_windows;
};
