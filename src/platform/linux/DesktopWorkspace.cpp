#include "platform/linux/DesktopWorkspace.h"

#include <QDesktopServices>
#include <QProcess>
#include <QStringList>

namespace {

struct SettingsPage {
    const char16_t *desktop; ///< as XDG_CURRENT_DESKTOP names it
    const char16_t *program;
    const char16_t *page;
};

constexpr SettingsPage settingsPages[] = {
    {u"GNOME", u"gnome-control-center", u"universal-access"},
    {u"KDE", u"systemsettings", u"kcm_access"},
};

} // namespace

QString DesktopWorkspace::openAccessibilitySettings() {
    const QStringList desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':');
    for (const SettingsPage &page : settingsPages) {
        if (!desktops.contains(QStringView(page.desktop)))
            continue;
        const QString program = QString::fromUtf16(page.program);
        if (QProcess::startDetached(program, {QString::fromUtf16(page.page)}))
            return {};
        return QStringLiteral("couldn't start ") + program;
    }
    return QStringLiteral("no settings page is known for this desktop; the X server must offer the "
                          "XTEST extension");
}

bool DesktopWorkspace::openUrl(const QUrl &url) { return QDesktopServices::openUrl(url); }
