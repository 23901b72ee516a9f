#include "platform/linux/LinuxPlatform.h"

#include "platform/Unavailable.h"
#include "platform/linux/AutostartEntry.h"
#include "platform/linux/DBusNotifications.h"
#include "platform/linux/DesktopWorkspace.h"
#include "platform/linux/SecretServiceStore.h"
#include "platform/linux/SecureInputs.h"
#include "platform/linux/SessionLock.h"
#include "platform/linux/StatusNotifierTrayHost.h"
#include "platform/qt/QtAlerts.h"
#include "platform/qt/QtChildProcess.h"
#include "platform/qt/QtDispatch.h"
#include "platform/qt/QtUrlSession.h"
#include "platform/qt/SettingsFile.h"
#include "platform/x11/X11Clipboard.h"
#include "platform/x11/X11EventSource.h"
#include "platform/x11/X11FrontWindow.h"
#include "platform/x11/X11Hotkeys.h"
#include "platform/x11/X11KeyboardGrab.h"
#include "platform/x11/X11PasteKeys.h"

namespace {

/// An X server that does not answer by then is not there.
constexpr std::chrono::seconds longestConnect{2};

std::shared_ptr<Pasteboard> makePasteboard(const std::shared_ptr<Dispatch> &dispatch) {
    auto pasteboard = std::make_shared<ThreadedPasteboard>(
        dispatch, [](int interrupt, ThreadedPasteboard::News news) {
            return std::make_unique<X11Clipboard>(interrupt, std::move(news));
        });
    if (const QString problem = pasteboard->problem(longestConnect); !problem.isEmpty())
        return std::make_shared<UnavailablePasteboard>(problem);
    return pasteboard;
}

/// The ports that the X server serves, on one connection of the main thread's.
void addX11(Platform &platform, const std::shared_ptr<X11Connection> &x11) {
    const auto hotkeys = std::make_shared<X11Hotkeys>(x11);
    platform.hotkeys = hotkeys;
    platform.pasteKeys = std::make_shared<X11PasteKeys>(x11, hotkeys, platform.dispatch);
    platform.frontWindow = std::make_shared<X11FrontWindow>(x11);
    platform.secureInput = std::make_shared<SecureInputs>(
        platform.dispatch, std::vector<std::shared_ptr<SecureInput>>{
                               std::make_shared<X11KeyboardGrab>(x11, hotkeys, platform.dispatch),
                               std::make_shared<AccessiblePasswordField>(platform.dispatch),
                               std::make_shared<SessionLock>()});
}

void addWithoutX11(Platform &platform) {
    const auto reason = QStringLiteral("no X server answers");
    platform.hotkeys = std::make_shared<UnavailableHotkeys>(reason);
    platform.pasteKeys = std::make_shared<UnavailablePasteKeys>(reason);
    platform.frontWindow = std::make_shared<UnavailableFrontWindow>();
    platform.secureInput = std::make_shared<UnavailableSecureInput>();
}

} // namespace

Platform makeLinuxPlatform() {
    const auto x11 = connectToX11();
    Platform platform;
    platform.dispatch = std::make_shared<QtDispatch>();
    platform.pasteboard = makePasteboard(platform.dispatch);
    if (x11)
        addX11(platform, x11);
    else
        addWithoutX11(platform);
    platform.childProcess = std::make_shared<QtChildProcess>();
    platform.notifications = std::make_shared<DBusNotifications>();
    platform.defaults = std::make_shared<SettingsFile>();
    platform.secretStore = std::make_shared<SecretServiceStore>();
    platform.alerts = std::make_shared<QtAlerts>();
    platform.workspace = std::make_shared<DesktopWorkspace>();
    platform.trayHost = std::make_shared<StatusNotifierTrayHost>(x11);
    platform.urlSession = std::make_shared<QtUrlSession>();
    platform.loginItems = std::make_shared<AutostartEntry>();
    return platform;
}
