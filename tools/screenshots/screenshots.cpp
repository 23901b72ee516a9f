// Draws the windows with sample settings, light and dark, into a folder. tools/screenshots.sh runs
// it.

#include "app/AppWindow.h"
#include "fakes/FakePlatform.h"
#include "platform/wording.h"
#include "preferences/LogView.h"
#include "preferences/PreferencesView.h"
#include "storage/LogStore.h"
#include "storage/Settings.h"

#include <QApplication>
#include <QDir>
#include <QPalette>
#include <QStyleFactory>
#include <QTest>

#include <cstdio>

namespace {

QPalette darkPalette() {
    QPalette palette(QColor(0x35, 0x36, 0x3a), QColor(0x2b, 0x2c, 0x30));
    palette.setColor(QPalette::Base, QColor(0x1f, 0x20, 0x23));
    palette.setColor(QPalette::Highlight, QColor(0x3d, 0x8f, 0xd1));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x6c, 0xb4, 0xee));
    return palette;
}

void fillSettings(FakePlatform &platform) {
    Settings &settings = Settings::shared();
    settings.baseURL = "https://acme.atlassian.net";
    settings.email = "ann@acme.example";
    settings.accountBaseURL = "https://app.example.com/records/";
    settings.displayTemplate = "{type-emoji} {key} - {summary}<c> 💬 {commenter-name}</c>";
    settings.tokenSavedAt = platform.dispatch->wallTime().addDays(-12);
    platform.secretStore->secrets = {{"org.ostrowind.brindle/jira-api-token", "x"}};
}

void fillLog() {
    for (const char *line :
         {"app: launched (version 0.1.0)", "hotkey: installing 1 combo(s)",
          "enrich: triggered (pasteAfter=true)", "enrich: detected Jira key ACME-7",
          "fetchSummary: GET issue/ACME-7 via gateway", "fetchSummary: HTTP 200 for issue/ACME-7",
          "fetchSummary: parsed key=ACME-7 type=Bug status=Open summary=14 chars",
          "enrich: clipboard updated for ACME-7 (format=richLink)", "enrich: paste succeeded",
          "enrich: original clipboard restored"})
        log(line);
}

/// Shows the window, lets everything that is queued happen and draws it.
bool shoot(AppWindow &window, FakePlatform &platform, const QString &file) {
    window.present();
    if (!QTest::qWaitForWindowExposed(&window))
        return false;
    platform.dispatch->drain();
    QTest::qWait(300); // animations of the toolkit's own
    const bool isSaved = window.grab().save(file);
    std::printf("%s\n", qPrintable(file));
    return isSaved;
}

} // namespace

int main(int argc, char *argv[]) {
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    const QApplication qt(argc, argv);
    const QDir folder(QApplication::arguments().value(1, "."));
    bool isComplete = true;
    for (const bool isDark : {false, true}) {
        QApplication::setPalette(isDark ? darkPalette() : QPalette(QColor(0xef, 0xef, 0xef)));
        const QString suffix = isDark ? "-dark.png" : "-light.png";
        FakePlatform platform;
        setWording(linuxWording());
        fillSettings(platform);
        fillLog();
        const AppWindow::MenuActions actions{[] {}, [] {}, [] {}};
        auto *view = new PreferencesView;
        AppWindow preferences("Settings", view, actions);
        preferences.fixSize();
        for (const PreferencesTab tab : PreferencesTabs::allCases) {
            view->selectTab(tab);
            const QString name =
                PreferencesTabs::face(tab).title.toLower().replace(' ', '-') + suffix;
            isComplete = shoot(preferences, platform, folder.filePath(name)) && isComplete;
        }
        AppWindow logs("Brindle Logs", new LogView, actions);
        isComplete = shoot(logs, platform, folder.filePath("log" + suffix)) && isComplete;
    }
    return isComplete ? 0 : 1;
}
