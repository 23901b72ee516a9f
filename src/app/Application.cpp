#include "app/Application.h"

#include "desktop/HotkeyManager.h"
#include "enrichment/Enrichment.h"
#include "platform/Platform.h"
#include "preferences/LogView.h"
#include "storage/LogStore.h"
#include "storage/Settings.h"

#include <QApplication>

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

} // namespace

Application::Application()
    : m_service([this] { openPreferences(); },
                {
                    {QStringLiteral("enrich"), [] { Enrichment::run(true); }},
                    {QStringLiteral("enrich-only"), [] { Enrichment::run(false); }},
                    {QStringLiteral("preferences"), [this] { openPreferences(); }},
                    {QStringLiteral("logs"), [this] { openLogs(); }},
                    {QStringLiteral("quit"), [] { QApplication::quit(); }},
                }) {
    loadArt();
}

Application::~Application() {
    HotkeyManager::shared().uninstall();
}

void Application::finishLaunching() {
    publish();
    log(QStringLiteral("app: launched (version %1)").arg(QStringLiteral(BRINDLE_VERSION)));
    Platform::current().defaults->onProblem(
        [](const QString &problem) { log(QStringLiteral("settings: ") + problem); });
    m_statusItem = std::make_unique<StatusItem>(StatusItem::Actions{
        [] { Enrichment::run(true); },
        [] { Enrichment::run(false); },
        [this] { openPreferences(); },
        [this] { openLogs(); },
        [] { QApplication::quit(); },
    });
    refreshStatusItemImage();
    reinstallHotkey();
}

void Application::installHotkey() {
    const QList<KeyCombo> combos = hotkeys();
    log(QStringLiteral("hotkey: installing %1 combo(s)").arg(combos.size()));
    HotkeyManager::shared().install(combos, [] { Enrichment::run(true); });
}

void Application::reinstallHotkey() {
    installHotkey();
    m_statusItem->setHotkey(Settings::shared().hotkeyDisplay());
}

void Application::refreshStatusItemImage() {
    if (m_statusItem)
        m_statusItem->refreshImage(isFetching());
}

void Application::openPreferences() {
    log(QStringLiteral("app: this version has no preferences window yet; preferences are kept in "
                       "org.ostrowind.brindle.conf in your configuration folder"));
    openLogs();
}

void Application::openLogs() {
    if (!m_logsWindow)
        m_logsWindow = std::make_unique<LogView>();
    m_logsWindow->show();
    m_logsWindow->raise();
    m_logsWindow->activateWindow();
}
