#include "app/Application.h"

#include "app/ActivationToken.h"
#include "clipboard/ClipboardRestorer.h"
#include "desktop/Access.h"
#include "desktop/CurrentRun.h"
#include "desktop/HotkeyManager.h"
#include "desktop/Notify.h"
#include "enrichment/Enrichment.h"
#include "model/AppInfo.h"
#include "platform/Platform.h"
#include "preferences/PreferencesView.h"
#include "preferences/log/LogView.h"
#include "storage/Keychain.h"
#include "storage/LogStore.h"
#include "storage/Settings.h"

#include <QApplication>
#include <QPointer>

/// Art in a static library has to be asked for by name, outside of any namespace.
static void loadArt() {
    Q_INIT_RESOURCE(resources);
}

namespace {

QList<KeyCombo> hotkeys() {
    const Settings &settings = Settings::shared();
    QList<KeyCombo> combos{{settings.hotkeyKeyCode(), settings.hotkeyModifiers()}};
    if (settings.hotkey2IsSet())
        combos.append({settings.hotkey2KeyCode(), settings.hotkey2Modifiers()});
    return combos;
}

/// The primary hotkey, as the user reads it; empty where the desktop has it and does not tell.
QString shownHotkey() {
    const Hotkeys &hotkeys = *Platform::current().hotkeys;
    if (!hotkeys.unavailableBecause().isEmpty())
        return {};
    if (const auto choice = hotkeys.desktopsChoice())
        return choice->line.isEmpty() ? choice->text : QString();
    return Settings::shared().hotkeyDisplay();
}

/// Perhaps the desktop ran it for one of our hotkeys.
void pasteByCommand() {
    if (!Platform::current().hotkeys->pressedByCommand())
        Enrichment::run(true);
}

QString version() {
    const QString version = QStringLiteral(BRINDLE_VERSION);
    return version.isEmpty() ? QStringLiteral("unknown") : version;
}

} // namespace

Application::Application()
    : m_service([this] { openPreferences(); },
                {
                    {QStringLiteral("enrich"), [] { pasteByCommand(); }},
                    {QStringLiteral("enrich-only"), [] { Enrichment::run(false); }},
                    {QStringLiteral("preferences"), [this] { openPreferences(); }},
                    {QStringLiteral("logs"), [this] { openLogs(); }},
                    {QStringLiteral("quit"), [] { QApplication::quit(); }},
                }) {
    loadArt();
    QApplication::setWindowIcon(
        QIcon(QStringLiteral(":/icons/%1.png").arg(AppInfo::bundleIdentifier())));
}

// The order matters: no run begins any more, what is under way is called off and its threads have
// ended while the ports and the windows still stand; only then is the clipboard given back.
Application::~Application() {
    CurrentRun::enter(RunPhase::Ended);
    m_trayPatience.cancel();
    HotkeyManager::shared().uninstall();
    Platform::current().finish();
    ClipboardRestorer::finishNow();
}

void Application::finishLaunching() {
    publish();
    log(QStringLiteral("app: launched (version %1)").arg(version()));
    for (const QString &choice : std::as_const(Platform::current().choices))
        log(QStringLiteral("platform: ") + choice);
    Platform::current().followLateChoices(
        [](const QString &choice) { log(QStringLiteral("platform: ") + choice); });
    Platform::current().defaults->onProblem(
        [](const QString &problem) { log(QStringLiteral("settings: ") + problem); });
    m_statusItem = std::make_unique<StatusItem>(StatusItem::Actions{
        [] { Enrichment::run(true); },
        [] { Enrichment::run(false); },
        [this] { openPreferences(); },
        [this] { openLogs(); },
        [this] { showAbout(); },
        [this] { checkForUpdates(); },
        [] { QApplication::quit(); },
    });
    refreshStatusItemImage();
    // The desktop may answer late, or have changed its mind.
    QObject::connect(&HotkeyManager::shared(), &HotkeyManager::installed, m_statusItem.get(),
                     [this] { m_statusItem->setHotkey(shownHotkey()); });
    reinstallHotkey();
    askForMissingCredentials();
    // Panels may come up after us.
    constexpr std::chrono::seconds untilAllIsUp(10);
    m_trayPatience =
        Platform::current().dispatch->after(untilAllIsUp, &Application::tellWhereItIsWithoutTray);
}

void Application::tellWhereItIsWithoutTray() {
    Settings &settings = Settings::shared();
    if (settings.toldWithoutTray() || Platform::current().trayHost->isAvailable().value_or(false))
        return;
    log(QStringLiteral("app: nothing shows status icons here"));
    Notify::show(AppInfo::displayName(), Access::withoutTray());
    settings.toldWithoutTray = true;
}

void Application::askForMissingCredentials() {
    const auto ask = [self = QPointer(this)] {
        if (!self)
            return;
        log(QStringLiteral("app: missing credentials, opening preferences"));
        self->openPreferences();
        Notify::show(AppInfo::displayName(),
                     QStringLiteral("Set your Atlassian email + scoped API token in Preferences."));
    };
    if (Settings::shared().email().isEmpty()) {
        Platform::current().dispatch->toMain([ask] {
            ask();
            ActivationToken::drop();
        });
        return;
    }
    // A token that the user would not unlock is as good as none.
    Keychain::loadToken(AppInfo::keychainAccount(), [ask](const Keychain::TokenAnswer &answer) {
        if (answer.outcome != Keychain::Outcome::Done)
            ask();
        ActivationToken::drop();
    });
}

void Application::installHotkey() {
    const QList<KeyCombo> combos = hotkeys();
    log(QStringLiteral("hotkey: installing %1 combo(s)").arg(combos.size()));
    HotkeyManager::shared().install(combos, [] { Enrichment::run(true); });
}

void Application::reinstallHotkey() {
    installHotkey();
    m_statusItem->setHotkey(shownHotkey());
}

void Application::refreshStatusItemImage() {
    if (m_statusItem)
        m_statusItem->refreshImage(Settings::shared().tokenIsAging(), isFetching());
}

AppWindow::MenuActions Application::menuActions() {
    return {[this] { checkForUpdates(); },
            [this] {
                for (AppWindow *window : {m_preferencesWindow.get(), m_logsWindow.get()}) {
                    if (window)
                        window->hide();
                }
            },
            [] { QApplication::quit(); }};
}

void Application::openPreferences() {
    if (!m_preferencesWindow) {
        m_preferencesWindow = std::make_unique<AppWindow>(QStringLiteral("Settings"),
                                                          new PreferencesView, menuActions());
        m_preferencesWindow->fixSize();
    }
    m_preferencesWindow->present();
}

void Application::openLogs() {
    if (!m_logsWindow) {
        m_logsWindow =
            std::make_unique<AppWindow>(QStringLiteral("Brindle Logs"), new LogView, menuActions());
    }
    m_logsWindow->present();
}

void Application::showAbout() {
    const QString hotkey = shownHotkey();
    Platform::current().alerts->show(
        {Alert::Style::Informational,
         QStringLiteral("Brindle for Jira"),
         QStringLiteral("Turn copied Jira URLs into rich hyperlinks.") +
             (hotkey.isEmpty() ? QString() : QStringLiteral("\n\nHotkey: ") + hotkey),
         {QStringLiteral("OK")}},
        [](int) {});
}

void Application::checkForUpdates() {
    // Packages are the business of the desktop's software centre.
    const QUrl page(QStringLiteral("appstream://") + AppInfo::bundleIdentifier());
    if (Platform::current().workspace->openUrl(page))
        return;
    log(QStringLiteral("app: nothing on this desktop opens ") + page.toString());
    Platform::current().alerts->show(
        {Alert::Style::Informational,
         QStringLiteral("Updates come from your package manager"),
         QStringLiteral("This desktop has no software centre that shows Brindle's page. The "
                        "installed version is %1.")
             .arg(version()),
         {QStringLiteral("OK")}},
        [](int) {});
}
