#include "enrichment/Delivery.h"

#include "clipboard/ClipboardRestorer.h"
#include "clipboard/Pasting.h"
#include "desktop/Access.h"
#include "desktop/Notify.h"
#include "model/AppInfo.h"
#include "platform/Platform.h"
#include "platform/wording.h"
#include "storage/LogStore.h"

namespace {

/// The longest that looking for a place where nothing may be typed can hold a paste up. Those that
/// answer at all have answered within 115 ms.
constexpr std::chrono::milliseconds longestLook{250};

void leaveForManualPaste() {
    log(QStringLiteral("enrich: secure keyboard entry active — leaving enriched link for manual "
                       "paste"));
    ClipboardRestorer::abandon();
    Notify::show(AppInfo::displayName(),
                 QStringLiteral("Couldn't paste: secure keyboard entry is active (a password field "
                                "or password manager). The enriched link is on your clipboard — "
                                "paste it with %1.")
                     .arg(wording().pasteKeys));
}

bool isPermissionProblem(const QString &error) {
    const QString lower = error.toLower();
    return lower.contains(u"not allowed to send keystrokes") || lower.contains(u"(1002)") ||
           lower.contains(u"not authorized");
}

void finish(const Pasting::Outcome &outcome, qint64 expectedChangeCount) {
    if (outcome.ok) {
        log(QStringLiteral("enrich: paste succeeded"));
        ClipboardRestorer::commit(expectedChangeCount, outcome.at);
        return;
    }
    const QString error = outcome.error.isEmpty() ? QStringLiteral("unknown") : outcome.error;
    log(QStringLiteral("enrich: paste failed (%1)").arg(error));
    ClipboardRestorer::abandon();
    if (isPermissionProblem(outcome.error)) {
        Enrichment::showAccessibilityAlert(error);
    } else {
        Notify::show(AppInfo::displayName(),
                     QStringLiteral("Clipboard updated but paste failed: ") + error + u'.');
    }
}

/// The desktop's own question comes first; its settings page is for where it asks none.
void leadToAccess() {
    if (!Access::consentOffer().isEmpty()) {
        Access::askForConsent([] {});
        return;
    }
    const QString missing = Platform::current().workspace->openAccessibilitySettings();
    if (!missing.isEmpty())
        log(QStringLiteral("enrich: can't open the accessibility settings: ") + missing);
}

void paste(const PasteboardWrite &written) {
    Pasting::simulateCommandV(
        Pasting::resolveVKeyCode(), written.at,
        [count = written.changeCount](const Pasting::Outcome &outcome) { finish(outcome, count); });
}

} // namespace

void Enrichment::deliverPaste(const QString &notifyText, bool pasteAfter,
                              const PasteboardWrite &written) {
    if (!pasteAfter) {
        ClipboardRestorer::abandon();
        Notify::show(AppInfo::displayName(), QStringLiteral("Clipboard: ") + notifyText);
        return;
    }
    ClipboardRestorer::markDelivering();
    Platform::current().pasteKeys->prepare();
    // Looking takes the desktop up to a tenth of a second, which the pause before the keystroke
    // hides.
    Platform::current().secureInput->check(longestLook, [written](SecureInput::Answer answer) {
        if (answer == SecureInput::Answer::Yes)
            leaveForManualPaste();
        else
            paste(written);
    });
}

void Enrichment::showAccessibilityAlert(const QString &detail) {
    Platform::current().dispatch->toMain([detail] {
        const Alert alert{
            Alert::Style::Warning,
            QStringLiteral("Brindle needs Accessibility permission"),
            QStringLiteral("The clipboard is updated, but %1 blocked the paste because "
                           "Accessibility isn't enabled for this build of Brindle.\n\n"
                           "Click the button below, then turn the switch on for Brindle (add it "
                           "manually with the + button if it isn't listed yet).\n\nDetails: %2")
                .arg(wording().system, detail),
            {QStringLiteral("Open Accessibility Settings"), QStringLiteral("Dismiss")}};
        Platform::current().alerts->show(alert, [](int button) {
            if (button == 0)
                leadToAccess();
        });
    });
}
