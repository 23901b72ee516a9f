#include "platform/linux/LinuxPlatform.h"

#include "platform/linux/AutostartEntry.h"
#include "platform/linux/DBusNotifications.h"
#include "platform/linux/DesktopWorkspace.h"
#include "platform/linux/SecretServiceStore.h"
#include "platform/linux/StatusNotifierTrayHost.h"
#include "platform/qt/QtAlerts.h"
#include "platform/qt/QtChildProcess.h"
#include "platform/qt/QtDispatch.h"
#include "platform/qt/QtUrlSession.h"
#include "platform/qt/SettingsFile.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Hotkeys.h"
#include "platform/x11/X11Keyboard.h"
#include "platform/x11/X11Pasteboard.h"

Platform makeLinuxPlatform() {
    // One connection serves all ports of the main thread.
    const auto x11 = std::make_shared<X11Connection>();
    const auto hotkeys = std::make_shared<X11Hotkeys>(x11);

    Platform platform;
    platform.dispatch = std::make_unique<QtDispatch>();
    platform.pasteboard = std::make_unique<X11Pasteboard>(x11);
    platform.keyboard = std::make_unique<X11Keyboard>(x11, hotkeys);
    platform.hotkeys = hotkeys;
    platform.childProcess = std::make_unique<QtChildProcess>();
    platform.notifications = std::make_unique<DBusNotifications>();
    platform.defaults = std::make_unique<SettingsFile>();
    platform.secretStore = std::make_unique<SecretServiceStore>();
    platform.alerts = std::make_unique<QtAlerts>();
    platform.workspace = std::make_unique<DesktopWorkspace>();
    platform.trayHost = std::make_unique<StatusNotifierTrayHost>(x11);
    platform.urlSession = std::make_shared<QtUrlSession>();
    platform.loginItems = std::make_shared<AutostartEntry>();
    return platform;
}
