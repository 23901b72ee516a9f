#pragma once

#include "platform/FrontWindow.h"
#include "platform/wayland/WaylandConnection.h"

#include <wlr-foreign-toplevel-management-unstable-v1.h>

#include <memory>
#include <vector>

/// The window that the compositor calls activated, by wlr-foreign-toplevel-management.
class ForeignToplevelWindow : public FrontWindow {
public:
    explicit ForeignToplevelWindow(std::shared_ptr<WaylandConnection> wayland);
    ~ForeignToplevelWindow() override;

    void find(std::function<void(Kind)> done) override;

    /// Why the compositor tells no windows; empty when it does.
    static QString problem(const WaylandConnection &wayland);

private:
    struct Window {
        ForeignToplevelWindow *front;
        WaylandObject<zwlr_foreign_toplevel_handle_v1> handle;
        QByteArray appId;
        bool isActivated = false;
    };

    void add(zwlr_foreign_toplevel_handle_v1 *handle);

    std::shared_ptr<WaylandConnection> m_wayland;
    WaylandObject<zwlr_foreign_toplevel_manager_v1> m_manager;
    std::vector<std::unique_ptr<Window>> m_windows;
};
