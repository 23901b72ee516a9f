#include "desktop/Access.h"

#include "platform/Platform.h"
#include "storage/LogStore.h"

#include <utility>

QString Access::clipboardProblem() {
    const QString reason = Platform::current().pasteboard->unavailableBecause();
    return reason.isEmpty() ? QString()
                            : QStringLiteral("Brindle can't reach the clipboard: %1.").arg(reason);
}

QString Access::pasteProblem() {
    const PasteAccess access = Platform::current().pasteKeys->access();
    if (access.state != PasteAccess::State::Impossible)
        return {};
    if (!access.offer.isEmpty())
        return QStringLiteral("Pasting needs your permission on this desktop: %1. Until then links "
                              "are copied for you to paste.")
            .arg(access.reason);
    return QStringLiteral("Brindle can't paste here: %1. Links are copied for you to paste.")
        .arg(access.reason);
}

QString Access::notice() {
    // Without a clipboard nothing else matters.
    for (const QString &text : {clipboardProblem(), pasteProblem()}) {
        if (!text.isEmpty())
            return text;
    }
    return needsConsent() ? QStringLiteral("Pasting needs your permission on this desktop.")
                          : QString();
}

bool Access::needsConsent() {
    return Platform::current().pasteKeys->access().state == PasteAccess::State::NeedsConsent;
}

QString Access::consentOffer() {
    return Platform::current().pasteKeys->access().offer;
}

void Access::askForConsent(std::function<void()> done) {
    log(QStringLiteral("access: asking for permission to paste"));
    Platform::current().pasteKeys->requestAccess(
        [done = std::move(done)](const PasteAccess &access) {
            log(access.state == PasteAccess::State::Ready
                    ? QStringLiteral("access: permission to paste given")
                    : QStringLiteral("access: no permission to paste (%1)").arg(access.reason));
            done();
        });
}

QString Access::keyringProblem() {
    return QStringLiteral("No keyring keeps API tokens here. ") + withoutKeyring();
}

QString Access::withoutKeyring() {
    return QStringLiteral("Install gnome-keyring, KWallet or KeePassXC, switch its Secret Service "
                          "on and log in again.");
}

QString Access::withoutTray() {
    const QString there = QStringLiteral("Brindle is reached by its hotkey, the actions of its "
                                         "desktop entry and \"brindle preferences\".");
    if (!qEnvironmentVariable("XDG_CURRENT_DESKTOP").contains(QStringLiteral("GNOME")))
        return there;
    return there + QStringLiteral(" For the icon GNOME needs the extension of the package "
                                  "gnome-shell-extension-appindicator, switched on.");
}
