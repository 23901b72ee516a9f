#include "enrichment/Run.h"

#include "desktop/Access.h"
#include "desktop/AppDelegate.h"
#include "desktop/CurrentRun.h"
#include "desktop/Notify.h"
#include "enrichment/Delivery.h"
#include "model/AppInfo.h"
#include "platform/Platform.h"
#include "storage/LogStore.h"

bool Run::mayGoOn() {
    if (!pasteAfter)
        return true;
    const PasteAccess access = Platform::current().pasteKeys->access();
    switch (access.state) {
    case PasteAccess::State::Ready:
        return true;
    case PasteAccess::State::NeedsConsent:
        log(QStringLiteral("enrich: Accessibility not granted — skipping clipboard mutation"));
        Enrichment::showAccessibilityAlert(
            QStringLiteral("Brindle isn't in the Accessibility allowlist yet."));
        return false;
    case PasteAccess::State::Impossible:
        break;
    }
    pasteAfter = false;
    log(QStringLiteral("enrich: can't paste here (%1) — copying instead").arg(access.reason));
    static QString toldReason;
    if (std::exchange(toldReason, access.reason) != access.reason)
        tell(Access::pasteProblem());
    return true;
}

void Run::giveUp() {
    CurrentRun::enter(RunPhase::Idle);
}

void Run::giveUp(const QString &logLine, const QString &message) {
    log(logLine);
    tell(message);
    giveUp();
}

void Run::tell(const QString &message) {
    Notify::show(AppInfo::displayName(), message);
}

void Run::openPreferences() {
    if (AppDelegate *app = AppDelegate::shared())
        app->openPreferences();
}
