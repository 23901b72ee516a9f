#include "platform/linux/LinuxPlatform.h"

#include "platform/Unavailable.h"
#include "platform/gnome/GnomeBackends.h"
#include "platform/kde/KdeBackends.h"
#include "platform/linux/AccessibleFrontWindow.h"
#include "platform/linux/AutostartEntry.h"
#include "platform/linux/Candidates.h"
#include "platform/linux/DBusNotifications.h"
#include "platform/linux/DesktopWorkspace.h"
#include "platform/linux/HotkeyRelease.h"
#include "platform/linux/ProbedKeys.h"
#include "platform/linux/SecretServiceStore.h"
#include "platform/linux/SecureInputs.h"
#include "platform/linux/SessionLock.h"
#include "platform/linux/StatusNotifierTrayHost.h"
#include "platform/portal/PortalBackends.h"
#include "platform/qt/QtAlerts.h"
#include "platform/qt/QtChildProcess.h"
#include "platform/qt/QtDispatch.h"
#include "platform/qt/QtUrlSession.h"
#include "platform/qt/SettingsFile.h"
#include "platform/x11/X11Backends.h"
#ifdef BRINDLE_KWIN
#include "platform/kde/KWinBackends.h"
#endif
#ifdef BRINDLE_WAYLAND
#include "platform/wayland/CompositorHotkeys.h"
#include "platform/wayland/WaylandBackends.h"
#endif

namespace {

/// What cannot be had takes the place of what can, and says why.
template <class Unavailable, class Port>
std::function<std::shared_ptr<Port>(const QString &)> unavailable() {
    return [](const QString &reason) { return std::make_shared<Unavailable>(reason); };
}

/// All that tells whether typing is safe, as far as this desktop has it.
std::shared_ptr<SecureInput> makeSecureInput(const std::shared_ptr<Dispatch> &dispatch,
                                             std::shared_ptr<SecureInput> keyboardGrab) {
    std::vector<std::shared_ptr<SecureInput>> looks;
    if (keyboardGrab)
        looks.push_back(std::move(keyboardGrab));
    looks.push_back(std::make_shared<AccessiblePasswordField>(dispatch));
    looks.push_back(std::make_shared<SessionLock>());
    return std::make_shared<SecureInputs>(dispatch, std::move(looks));
}

/// The capabilities that differ from desktop to desktop, each with its candidates in order.
struct Candidates {
    std::vector<Candidate<Pasteboard>> pasteboard;
    std::vector<Candidate<Hotkeys>> hotkeys;
    std::vector<Candidate<PasteKeys>> pasteKeys;
    std::vector<Candidate<FrontWindow>> frontWindow;
    /// What stands for hotkeys when there are none.
    std::function<std::shared_ptr<Hotkeys>(const QString &)> noHotkeys;
};

void choose(Platform &platform, const Candidates &candidates) {
    platform.hotkeys = chooseFirst<Hotkeys>(QStringLiteral("hotkeys"), candidates.hotkeys,
                                            candidates.noHotkeys, platform.choices);
    platform.pasteKeys =
        chooseFirst<PasteKeys>(QStringLiteral("paste keys"), candidates.pasteKeys,
                               unavailable<UnavailablePasteKeys, PasteKeys>(), platform.choices);
    platform.frontWindow = chooseFirst<FrontWindow>(
        QStringLiteral("front window"), candidates.frontWindow,
        [](const QString &) { return std::make_shared<UnavailableFrontWindow>(); },
        platform.choices);
    // Last, since it connects while the others are made.
    platform.pasteboard =
        chooseFirst<Pasteboard>(QStringLiteral("clipboard"), candidates.pasteboard,
                                unavailable<UnavailablePasteboard, Pasteboard>(), platform.choices);
}

void useX11(Platform &platform) {
    X11Backends x11(platform.dispatch);
    choose(platform,
           {.pasteboard = {{QStringLiteral("X11 selection"), [&] { return x11.pasteboard(); }}},
            .hotkeys = {{QStringLiteral("X11 grabs"), [&] { return x11.hotkeys(); }}},
            .pasteKeys = {{QStringLiteral("XTEST"), [&] { return x11.pasteKeys(); }}},
            .frontWindow = {{QStringLiteral("X11 focus"), [&] { return x11.frontWindow(); }}},
            .noHotkeys = unavailable<UnavailableHotkeys, Hotkeys>()});
    const auto grab = x11.keyboardGrab();
    platform.secureInput = makeSecureInput(platform.dispatch, grab ? *grab : nullptr);
    platform.trayHost = std::make_shared<StatusNotifierTrayHost>(x11.connection());
}

#ifdef BRINDLE_WAYLAND
/// The clipboard of a compositor that offers no data-control, through its X server: some, GNOME's
/// among them, mirror it there whatever is in front. It may start only when we connect.
Result<std::shared_ptr<Pasteboard>> throughXWayland(const Platform &platform) {
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        return Result<std::shared_ptr<Pasteboard>>::failure(
            QStringLiteral("the compositor runs no X server"));
    return X11Backends(platform.dispatch).pasteboardLater();
}

const QString portalShortcuts = QStringLiteral("GlobalShortcuts portal");

/// The hotkeys of the portal, which tells only later whether it has any; else the first of `rest`.
Result<std::shared_ptr<Hotkeys>>
hotkeysOfPortal(PortalBackends &portal, const Platform &platform,
                const std::vector<Candidate<Hotkeys>> &rest,
                const std::function<std::shared_ptr<Hotkeys>(const QString &)> &noHotkeys) {
    const auto otherwise = [=, late = platform.lateChoices](const QString &reason) {
        std::vector<Candidate<Hotkeys>> all{
            {portalShortcuts, [&] { return Result<std::shared_ptr<Hotkeys>>::failure(reason); }}};
        all.insert(all.end(), rest.begin(), rest.end());
        QStringList report;
        auto chosen = chooseFirst<Hotkeys>(QStringLiteral("hotkeys"), all, noHotkeys, report);
        late->tell(report.constFirst());
        return chosen;
    };
    return portal.globalShortcuts(platform.defaults, CompositorHotkeys({}).desktopsChoice(),
                                  otherwise);
}

/// As far as applications describe themselves to assistive technology.
Result<std::shared_ptr<FrontWindow>> accessibleFrontWindow(const Platform &platform) {
    return std::shared_ptr<FrontWindow>(std::make_shared<AccessibleFrontWindow>(platform.dispatch));
}

/// How the portal's keys learn that the user's are up.
std::shared_ptr<HeldKeys> heldKeysOf(const KdeBackends &kde, const PortalBackends &portal,
                                     const Platform &platform) {
    if (GnomeBackends::isDesktop())
        return std::make_shared<ProbedKeys>(portal.probe(), platform.dispatch);
    return std::make_shared<HotkeyRelease>(kde.holdOr(portal.hold()), platform.dispatch);
}

/// But for that X11 is left alone: its grabs and fake keys reach no native window, and a connection
/// would start XWayland for nothing.
void useWayland(Platform &platform, WaylandBackends &wayland) {
    KdeBackends kde;
    PortalBackends portal(platform.dispatch, platform.secretStore);
    const Candidate<Hotkeys> customShortcuts{
        QStringLiteral("GNOME's custom shortcuts"),
        [probe = portal.probe()] { return GnomeBackends::customKeybindings(probe); }};
    const auto noHotkeys = unavailable<CompositorHotkeys, Hotkeys>();
    Candidates candidates{
        .pasteboard = {{QStringLiteral("data-control"), [&] { return wayland.dataControl(); }},
                       {QStringLiteral("X11 selection"),
                        [&] { return throughXWayland(platform); }}},
        .hotkeys = {{QStringLiteral("sway IPC"), [&] { return wayland.sway(); }},
                    {QStringLiteral("KGlobalAccel"), [&] { return kde.globalAccel(); }},
                    {portalShortcuts,
                     [&] {
                         return hotkeysOfPortal(portal, platform, {customShortcuts}, noHotkeys);
                     }},
                    customShortcuts},
        .pasteKeys = {{QStringLiteral("virtual keyboard"),
                       [&] { return wayland.virtualKeyboard(); }}},
        .frontWindow = {{QStringLiteral("foreign toplevel"),
                         [&] { return wayland.foreignToplevel(); }}},
        .noHotkeys = noHotkeys};
#ifdef BRINDLE_KWIN
    KWinBackends kwin(platform.dispatch, wayland.connection());
    candidates.pasteKeys.push_back(
        {QStringLiteral("fake input"), [&] { return kwin.fakeInput(kde.holdOr(portal.hold())); }});
    candidates.frontWindow.push_back(
        {QStringLiteral("Plasma's windows"), [&] { return kwin.plasmaWindows(); }});
#endif
    candidates.pasteKeys.push_back(
        {QStringLiteral("RemoteDesktop portal"),
         [&] { return portal.remoteDesktop(heldKeysOf(kde, portal, platform), {}); }});
    if (GnomeBackends::isDesktop())
        candidates.frontWindow.push_back(
            {QStringLiteral("accessibility bus"), [&] { return accessibleFrontWindow(platform); }});
    choose(platform, candidates);
    platform.secureInput = makeSecureInput(platform.dispatch, nullptr);
    platform.trayHost = std::make_shared<StatusNotifierTrayHost>(nullptr);
}
#endif

/// The session is a Wayland compositor's if one answers, else an X server's.
void useSession(Platform &platform) {
#ifdef BRINDLE_WAYLAND
    WaylandBackends wayland(platform.dispatch);
    if (wayland.isSession()) {
        useWayland(platform, wayland);
        return;
    }
#endif
    useX11(platform);
}

} // namespace

Platform makeLinuxPlatform() {
    Platform platform;
    platform.dispatch = std::make_shared<QtDispatch>();
    platform.secretStore = std::make_shared<SecretServiceStore>(platform.dispatch);
    platform.defaults = std::make_shared<SettingsFile>();
    useSession(platform);
    platform.childProcess = std::make_shared<QtChildProcess>();
    platform.notifications = std::make_shared<DBusNotifications>();
    platform.alerts = std::make_shared<QtAlerts>();
    platform.workspace = std::make_shared<DesktopWorkspace>();
    platform.urlSession = std::make_shared<QtUrlSession>();
    platform.loginItems = std::make_shared<AutostartEntry>();
    return platform;
}
