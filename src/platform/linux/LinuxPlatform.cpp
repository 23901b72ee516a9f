#include "platform/linux/LinuxPlatform.h"

#include "platform/Unavailable.h"
#include "platform/linux/AutostartEntry.h"
#include "platform/linux/Candidates.h"
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
#include "platform/x11/X11Backends.h"

namespace {

/// What cannot be had takes the place of what can, and says why.
template <class Unavailable, class Port>
std::function<std::shared_ptr<Port>(const QString &)> unavailable() {
    return [](const QString &reason) { return std::make_shared<Unavailable>(reason); };
}

/// All that tells whether typing is safe, as far as this desktop has it.
std::shared_ptr<SecureInput> makeSecureInput(const std::shared_ptr<Dispatch> &dispatch,
                                             X11Backends &x11) {
    std::vector<std::shared_ptr<SecureInput>> looks;
    if (const auto grab = x11.keyboardGrab())
        looks.push_back(*grab);
    looks.push_back(std::make_shared<AccessiblePasswordField>(dispatch));
    looks.push_back(std::make_shared<SessionLock>());
    return std::make_shared<SecureInputs>(dispatch, std::move(looks));
}

/// The capabilities that differ from desktop to desktop, each with its candidates in order.
void choose(Platform &platform, X11Backends &x11) {
    platform.hotkeys = chooseFirst<Hotkeys>(
        QStringLiteral("hotkeys"), {{QStringLiteral("X11 grabs"), [&] { return x11.hotkeys(); }}},
        unavailable<UnavailableHotkeys, Hotkeys>(), platform.choices);
    platform.pasteKeys = chooseFirst<PasteKeys>(
        QStringLiteral("paste keys"), {{QStringLiteral("XTEST"), [&] { return x11.pasteKeys(); }}},
        unavailable<UnavailablePasteKeys, PasteKeys>(), platform.choices);
    platform.frontWindow = chooseFirst<FrontWindow>(
        QStringLiteral("front window"),
        {{QStringLiteral("X11 focus"), [&] { return x11.frontWindow(); }}},
        [](const QString &) { return std::make_shared<UnavailableFrontWindow>(); },
        platform.choices);
    // Last, since it connects while the others are made.
    platform.pasteboard = chooseFirst<Pasteboard>(
        QStringLiteral("clipboard"),
        {{QStringLiteral("X11 selection"), [&] { return x11.pasteboard(); }}},
        unavailable<UnavailablePasteboard, Pasteboard>(), platform.choices);
}

} // namespace

Platform makeLinuxPlatform() {
    Platform platform;
    platform.dispatch = std::make_shared<QtDispatch>();
    X11Backends x11(platform.dispatch);
    choose(platform, x11);
    platform.secureInput = makeSecureInput(platform.dispatch, x11);
    platform.childProcess = std::make_shared<QtChildProcess>();
    platform.notifications = std::make_shared<DBusNotifications>();
    platform.defaults = std::make_shared<SettingsFile>();
    platform.secretStore = std::make_shared<SecretServiceStore>(platform.dispatch);
    platform.alerts = std::make_shared<QtAlerts>();
    platform.workspace = std::make_shared<DesktopWorkspace>();
    platform.trayHost = std::make_shared<StatusNotifierTrayHost>(x11.connection());
    platform.urlSession = std::make_shared<QtUrlSession>();
    platform.loginItems = std::make_shared<AutostartEntry>();
    return platform;
}
