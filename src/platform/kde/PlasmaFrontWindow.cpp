#include "platform/kde/PlasmaFrontWindow.h"

#include "platform/linux/Terminals.h"

#include <plasma-window-management.h>

#include <algorithm>

namespace {

/// The version that names windows as newer ones do; with it come no events but those below.
constexpr uint32_t version = ORG_KDE_PLASMA_WINDOW_MANAGEMENT_WINDOW_WITH_UUID_SINCE_VERSION;

/// Takes an event that does not matter here.
template <class Object, class... Arguments>
void ignore(void *, Object *, Arguments...) {}

} // namespace

QString PlasmaFrontWindow::problem(const WaylandConnection &wayland) {
    if (!wayland.isOpen())
        return wayland.problem();
    if (!wayland.offers(org_kde_plasma_window_management_interface, version))
        return QStringLiteral("the compositor does not tell this program what windows there are");
    return {};
}

PlasmaFrontWindow::PlasmaFrontWindow(std::shared_ptr<WaylandConnection> wayland)
    : m_wayland(std::move(wayland)) {
    static constexpr auto listener = [] {
        org_kde_plasma_window_management_listener all{};
        all.show_desktop_changed = ignore;
        all.window = ignore;
        all.stacking_order_changed = ignore;
        all.stacking_order_uuid_changed = ignore;
        all.window_with_uuid = [](void *self, org_kde_plasma_window_management *, uint32_t,
                                  const char *uuid) {
            static_cast<PlasmaFrontWindow *>(self)->add(uuid);
        };
        return all;
    }();
    if (!problem(*m_wayland).isEmpty())
        return;
    m_management = holdWayland(m_wayland->bind<org_kde_plasma_window_management>(
                                   org_kde_plasma_window_management_interface, version),
                               org_kde_plasma_window_management_destroy);
    org_kde_plasma_window_management_add_listener(m_management.get(), &listener, this);
}

PlasmaFrontWindow::~PlasmaFrontWindow() = default;

void PlasmaFrontWindow::add(const char *uuid) {
    using Object = org_kde_plasma_window;
    static constexpr auto listener = [] {
        org_kde_plasma_window_listener all{};
        all.title_changed = ignore;
        all.app_id_changed = [](void *window, Object *, const char *appId) {
            static_cast<Window *>(window)->appId = appId;
        };
        all.state_changed = [](void *window, Object *, uint32_t states) {
            static_cast<Window *>(window)->isActive =
                states & ORG_KDE_PLASMA_WINDOW_MANAGEMENT_STATE_ACTIVE;
        };
        all.virtual_desktop_changed = ignore;
        all.themed_icon_name_changed = ignore;
        all.unmapped = [](void *data, Object *) {
            std::erase_if(static_cast<Window *>(data)->front->m_windows,
                          [=](const auto &window) { return window.get() == data; });
        };
        all.initial_state = ignore;
        all.parent_window = ignore;
        all.geometry = ignore;
        all.icon_changed = ignore;
        all.pid_changed = ignore;
        all.virtual_desktop_entered = ignore;
        all.virtual_desktop_left = ignore;
        all.application_menu = ignore;
        return all;
    }();
    auto &window = m_windows.emplace_back(std::make_unique<Window>());
    window->front = this;
    window->object =
        holdWayland(org_kde_plasma_window_management_get_window_by_uuid(m_management.get(), uuid),
                    org_kde_plasma_window_destroy);
    org_kde_plasma_window_add_listener(window->object.get(), &listener, window.get());
}

void PlasmaFrontWindow::find(std::function<void(Kind)> done) {
    m_wayland->handleEvents();
    const auto front = std::find_if(m_windows.begin(), m_windows.end(),
                                    [](const auto &window) { return window->isActive; });
    if (front == m_windows.end() || !m_wayland->isOpen())
        done(Kind::Unknown);
    else
        done(Terminals::isTerminal((*front)->appId) ? Kind::Terminal : Kind::Application);
}
