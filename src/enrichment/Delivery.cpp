#include "enrichment/Delivery.h"

#include "clipboard/ClipboardRestorer.h"
#include "clipboard/Pasting.h"
#include "desktop/Notify.h"
#include "model/AppInfo.h"
#include "platform/Platform.h"
#include "platform/wording.h"
#include "storage/LogStore.h"

namespace {

/// The longest that looking for a password field may hold a paste up. Those that answer at all have
/// answered within 115 ms.
constexpr std::chrono::milliseconds focusDeadline{250};

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

/// On a background thread. The look at the focus costs the desktop's accessibility service up to a
/// tenth of a second, so it shares the pause before the keystroke.
void paste(quint16 vKey, qint64 expectedChangeCount, Dispatch::Clock::time_point start) {
    const Platform &platform = Platform::current();
    if (platform.keyboard->isPasswordFieldFocused(focusDeadline)) {
        platform.dispatch->toMain(leaveForManualPaste);
        return;
    }
    const Pasting::Outcome outcome = Pasting::simulateCommandV(vKey, start);
    platform.dispatch->toMain(
        [outcome, expectedChangeCount] { finish(outcome, expectedChangeCount); });
}

} // namespace

void Enrichment::deliverPaste(const QString &notifyText, bool pasteAfter) {
    const Platform &platform = Platform::current();
    const auto start = platform.dispatch->now(); // what follows shares the pause
    if (!pasteAfter) {
        ClipboardRestorer::abandon();
        Notify::show(AppInfo::displayName(), QStringLiteral("Clipboard: ") + notifyText);
        return;
    }
    if (platform.keyboard->isSecureInputActive()) {
        leaveForManualPaste();
        return;
    }
    const qint64 expectedChangeCount = platform.pasteboard->changeCount();
    ClipboardRestorer::markDelivering();
    const quint16 vKey = Pasting::resolveVKeyCode();
    platform.dispatch->toBackground([=] { paste(vKey, expectedChangeCount, start); });
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
            if (button != 0)
                return;
            const QString missing = Platform::current().workspace->openAccessibilitySettings();
            if (!missing.isEmpty())
                log(QStringLiteral("enrich: can't open the accessibility settings: ") + missing);
        });
    });
}
