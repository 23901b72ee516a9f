// Draws the windows with sample settings, light and dark, and what they pop up, into a folder.
// tools/screenshots.sh runs it, also at other scales and sizes of text.

#include "app/AppWindow.h"
#include "desktop/HotkeyManager.h"
#include "fakes/FakePlatform.h"
#include "platform/wording.h"
#include "preferences/PreferencesView.h"
#include "preferences/emoji/EmojiField.h"
#include "preferences/kit/BorderedField.h"
#include "preferences/log/LogView.h"
#include "preferences/template/PlaceholderTextView.h"
#include "preferences/template/ResizeGrip.h"
#include "storage/LogStore.h"
#include "storage/Settings.h"

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QPainter>
#include <QPalette>
#include <QPushButton>
#include <QStyleFactory>
#include <QTest>
#include <QToolTip>

#include <algorithm>
#include <cstdio>

namespace {

QPalette darkPalette() {
    QPalette palette(QColor(0x35, 0x36, 0x3a), QColor(0x2b, 0x2c, 0x30));
    palette.setColor(QPalette::Base, QColor(0x1f, 0x20, 0x23));
    palette.setColor(QPalette::Highlight, QColor(0x3d, 0x8f, 0xd1));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::ToolTipBase, QColor(0x1f, 0x20, 0x23));
    palette.setColor(QPalette::ToolTipText, Qt::white);
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

/// The window with everything that hangs over it, as on a desktop.
QImage picture(const QWidget &window) {
    QRect frame(window.mapToGlobal(QPoint()), window.size());
    QWidgetList parts;
    for (QWidget *part : QApplication::topLevelWidgets()) {
        const bool hangs = part->windowType() == Qt::ToolTip || part->windowType() == Qt::Popup;
        if (hangs && part->isVisible())
            parts.append(part);
    }
    for (const QWidget *part : parts)
        frame |= part->geometry();
    const qreal ratio = window.devicePixelRatio();
    QImage image(frame.size() * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.drawPixmap(window.mapToGlobal(QPoint()) - frame.topLeft(),
                       const_cast<QWidget &>(window).grab());
    for (QWidget *part : parts) {
        if (!part->mask().isEmpty())
            painter.setClipRegion(part->mask().translated(part->pos() - frame.topLeft()));
        painter.drawPixmap(part->pos() - frame.topLeft(), part->grab());
        painter.setClipping(false);
    }
    return image;
}

/// Shows the window, lets everything that is queued happen and draws it.
bool shoot(AppWindow &window, FakePlatform &platform, const QString &file) {
    window.present();
    if (!QTest::qWaitForWindowExposed(&window))
        return false;
    platform.dispatch->drain();
    QTest::qWait(300);                                         // animations of the toolkit's own
    const bool isSaved = picture(window).save(file, "png", 0); // as small as it gets
    std::printf("%s\n", qPrintable(file));
    return isSaved;
}

/// The same with a tooltip, the list of placeholders and the emoji picker.
bool shootPopups(AppWindow &window, PreferencesView &view, FakePlatform &platform,
                 const QString &end) {
    const auto first = [](const auto &fields, auto isWanted) {
        const auto found = std::find_if(fields.begin(), fields.end(), [&](QWidget *field) {
            return field->isVisible() && isWanted(field);
        });
        return *found;
    };
    view.selectTab(PreferencesTab::Connection);
    QWidget *token = first(view.findChildren<BorderedField *>(),
                           [](QWidget *field) { return !field->toolTip().isEmpty(); });
    QToolTip::showText(token->mapToGlobal(QPoint(20, 10)), token->toolTip(), token);
    bool isComplete = shoot(window, platform, end.arg("tooltip"));
    QToolTip::hideText();
    QTest::qWait(500); // it fades

    view.selectTab(PreferencesTab::Jira);
    const auto any = [](QWidget *) { return true; };
    PlaceholderTextView *text = first(view.findChildren<PlaceholderTextView *>(), any);
    text->setFocus();
    QTest::keyClicks(text, " {");
    isComplete = shoot(window, platform, end.arg("placeholders")) && isComplete;
    QTest::keyClick(text, Qt::Key_Escape);
    QTest::keyClick(text, Qt::Key_Backspace);

    EmojiField *emoji = first(view.findChildren<EmojiField *>(), any);
    emoji->setFocus(Qt::TabFocusReason); // scrolls there
    emoji->replaceByPicking();
    isComplete = shoot(window, platform, end.arg("emoji")) && isComplete;
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    return isComplete;
}

/// What the tabs say when something can't be had: a hotkey, an issue, a connection; and a template
/// that needs more room than it has.
bool shootProblems(AppWindow &window, PreferencesView &view, FakePlatform &platform,
                   const QString &end) {
    const auto visible = [&](const auto &widgets, const QString &name) {
        const auto found = std::find_if(widgets.begin(), widgets.end(), [&](QWidget *widget) {
            return widget->isVisible() &&
                   (widget->accessibleName() == name || widget->property("text") == name);
        });
        return *found;
    };
    const Settings &settings = Settings::shared();
    const KeyCombo hotkey{settings.hotkeyKeyCode(), settings.hotkeyModifiers()};
    platform.hotkeys->taken = {hotkey};
    HotkeyManager::shared().install({hotkey}, [] {});
    view.selectTab(PreferencesTab::General);
    bool isComplete = shoot(window, platform, end.arg("hotkey-taken"));
    platform.hotkeys->taken.clear();
    HotkeyManager::shared().install({hotkey}, [] {});

    view.selectTab(PreferencesTab::Connection);
    QCoreApplication::processEvents();
    QTest::mouseClick(visible(view.findChildren<QPushButton *>(), "Test Connection"),
                      Qt::LeftButton);
    isComplete = shoot(window, platform, end.arg("connection-failed")) && isComplete;

    const QString usual = settings.displayTemplate();
    Settings::shared().displayTemplate = QString("{key} - {summary} ").repeated(60);
    view.selectTab(PreferencesTab::Jira);
    QCoreApplication::processEvents();
    auto *grip = view.findChild<ResizeGrip *>();
    grip->moveTo(60);
    QLineEdit *input = visible(view.findChildren<QLineEdit *>(), "Try a real ticket:");
    input->setText("AB-7");
    QTest::keyClick(input, Qt::Key_Return);
    isComplete = shoot(window, platform, end.arg("preview-failed")) && isComplete;
    input->clear();
    Settings::shared().displayTemplate = usual;
    return isComplete;
}

} // namespace

int main(int argc, char *argv[]) {
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    const QApplication qt(argc, argv);
    const QDir folder(QApplication::arguments().value(1, "."));
    bool isComplete = true;
    for (const bool isDark : {false, true}) {
        QApplication::setPalette(isDark ? darkPalette() : QPalette(QColor(0xef, 0xef, 0xef)));
        QToolTip::setPalette(QApplication::palette());
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
        isComplete =
            shootPopups(preferences, *view, platform, folder.filePath("%1" + suffix)) && isComplete;
        isComplete = shootProblems(preferences, *view, platform, folder.filePath("%1" + suffix)) &&
                     isComplete;
        AppWindow logs("Brindle Logs", new LogView, actions);
        isComplete = shoot(logs, platform, folder.filePath("log" + suffix)) && isComplete;
    }
    return isComplete ? 0 : 1;
}
