#include "platform/linux/DesktopWorkspace.h"

#include <QProcess>
#include <QStringList>

// GLib's headers use a name that Qt defines as a macro.
#undef signals
#include <gio/gio.h>

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

bool DesktopWorkspace::openUrl(const QUrl &url) {
    // The toolkit's own way reports success even where no program handles the scheme.
    return g_app_info_launch_default_for_uri(url.toEncoded().constData(), nullptr, nullptr);
}
