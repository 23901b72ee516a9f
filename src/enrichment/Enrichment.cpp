#include "enrichment/Enrichment.h"

#include "clients/ConfluenceClient.h"
#include "clients/JiraClient.h"
#include "clipboard/Clipboard.h"
#include "clipboard/ClipboardRestorer.h"
#include "desktop/AppDelegate.h"
#include "desktop/Notify.h"
#include "enrichment/Delivery.h"
#include "enrichment/ReferenceDetection.h"
#include "enrichment/TemplateRendering.h"
#include "model/AppInfo.h"
#include "model/Text.h"
#include "platform/Platform.h"
#include "storage/Keychain.h"
#include "storage/LogStore.h"
#include "storage/Settings.h"

namespace {

void tell(const QString &message) {
    Notify::show(AppInfo::displayName(), message);
}

void openPreferences() {
    if (AppDelegate *app = AppDelegate::shared())
        app->openPreferences();
}

void setFetching(bool fetching) {
    if (AppDelegate *app = AppDelegate::shared())
        app->setIsFetching(fetching);
}

bool isBusy() {
    const AppDelegate *app = AppDelegate::shared();
    if (app && app->isFetching()) {
        log(QStringLiteral("enrich: a fetch is already in flight — ignoring re-trigger"));
        return true;
    }
    if (ClipboardRestorer::isDelivering()) {
        log(QStringLiteral("enrich: a paste is already in flight — ignoring re-trigger"));
        return true;
    }
    return false;
}

bool clipboardHasText() {
    const auto text = Platform::current().pasteboard->text(PasteboardType::String);
    if (text && !Text::trimmedView(*text).isEmpty())
        return true;
    log(QStringLiteral("enrich: clipboard empty or not text"));
    tell(QStringLiteral("Clipboard is empty or not text."));
    return false;
}

/// Whether a paste will be let through; told to the user when not. Without a paste nothing is
/// asked.
bool mayPaste(bool pasteAfter) {
    if (!pasteAfter || Platform::current().keyboard->isTrusted())
        return true;
    log(QStringLiteral("enrich: Accessibility not granted — skipping clipboard mutation"));
    Enrichment::showAccessibilityAlert(
        QStringLiteral("Brindle isn't in the Accessibility allowlist yet."));
    return false;
}

/// The e-mail address and token to fetch with.
struct Credentials {
    QString email;
    QString token;
};

/// The credentials for `account`, or nothing after telling the user what is missing.
std::optional<Credentials> credentials(const QString &account, const QString &product,
                                       const QString &tokenMessage) {
    const QString email = Settings::shared().email();
    if (email.isEmpty()) {
        log(QStringLiteral("enrich: no email configured"));
        tell(QStringLiteral("Email not set. Open Preferences."));
        openPreferences();
        return std::nullopt;
    }
    const QString token = Keychain::loadToken(account).value_or(QString());
    if (token.isEmpty()) {
        log(QStringLiteral("enrich: no %1 token configured").arg(product));
        tell(tokenMessage);
        openPreferences();
        return std::nullopt;
    }
    return Credentials{email, token};
}

/// The steps that all three kinds share once the display text is known.
void deliverLink(const QString &displayText, const QString &url, const QString &label,
                 PasteFormat format, bool pasteAfter) {
    if (pasteAfter && Settings::shared().restoreClipboardAfterPaste())
        ClipboardRestorer::arm();
    const QString plain = Clipboard::write(displayText, url, format);
    log(QStringLiteral("enrich: clipboard updated for %1 (format=%2)")
            .arg(label, PasteFormats::rawValue(format)));
    Enrichment::deliverPaste(plain, pasteAfter);
}

void finishJira(const JiraClient::FetchResult &result, const JiraRef &ref, bool pasteAfter) {
    setFetching(false);
    if (!result.summary) {
        log(QStringLiteral("enrich: fetch failed (%1)")
                .arg(result.error.value_or(QStringLiteral("unknown"))));
        tell(result.error.value_or(QStringLiteral("Failed to fetch ") + ref.key));
        return;
    }
    const QString text = Enrichment::renderTemplate(
        Settings::shared().displayTemplate(), ref.key, result.type, *result.summary, result.status,
        ref.commentId.has_value(), result.commentText, result.commentAuthor);
    deliverLink(text, ref.url, ref.key, Settings::shared().pasteFormat(), pasteAfter);
}

void runJira(const JiraRef &ref, const QString &baseURL, bool pasteAfter) {
    log(QStringLiteral("enrich: detected Jira key ") + ref.key);
    const auto access = credentials(AppInfo::keychainAccount(), QStringLiteral("Jira"),
                                    QStringLiteral("Jira API token not set. Open Preferences."));
    if (!access || !mayPaste(pasteAfter))
        return;
    setFetching(true);
    Platform::current().dispatch->toBackground([ref, baseURL, access = *access, pasteAfter] {
        JiraClient::fetchSummary(
            ref.key, ref.commentId, baseURL, access.email, access.token,
            [ref, pasteAfter](const JiraClient::FetchResult &result) {
                Platform::current().dispatch->toMain(
                    [result, ref, pasteAfter] { finishJira(result, ref, pasteAfter); });
            });
    });
}

void finishConfluence(const ConfluenceClient::ConfluenceFetchResult &result,
                      const ConfluenceRef &ref, bool pasteAfter) {
    setFetching(false);
    if (!result.title) {
        log(QStringLiteral("enrich: confluence fetch failed (%1)")
                .arg(result.error.value_or(QStringLiteral("unknown"))));
        tell(
            result.error.value_or(QStringLiteral("Failed to fetch Confluence page ") + ref.pageId));
        return;
    }
    const QString text =
        Enrichment::renderConfluenceTemplate(Settings::shared().confluenceTemplate(), *result.title,
                                             ref.spaceKey, ref.typeLabel(), ref.pageId);
    deliverLink(text, ref.url, QStringLiteral("confluence page ") + ref.pageId,
                Settings::shared().pasteFormat(), pasteAfter);
}

void runConfluence(const ConfluenceRef &ref, const QString &baseURL, bool pasteAfter) {
    log(QStringLiteral("enrich: detected Confluence page %1 in %2").arg(ref.pageId, ref.spaceKey));
    const auto access =
        credentials(AppInfo::keychainAccountConfluence(), QStringLiteral("Confluence"),
                    QStringLiteral("Confluence API token not set. Add one in Preferences → "
                                   "Connection."));
    if (!access || !mayPaste(pasteAfter))
        return;
    setFetching(true);
    Platform::current().dispatch->toBackground([ref, baseURL, access = *access, pasteAfter] {
        ConfluenceClient::fetchPage(
            ref.pageId, baseURL, access.email, access.token,
            [ref, pasteAfter](const ConfluenceClient::ConfluenceFetchResult &result) {
                Platform::current().dispatch->toMain(
                    [result, ref, pasteAfter] { finishConfluence(result, ref, pasteAfter); });
            });
    });
}

void runAccount(const AccountRef &ref, bool pasteAfter) {
    const QString shortId = ref.id.left(6) + u'…';
    log(QStringLiteral("enrich: detected ID ") + shortId);
    if (!mayPaste(pasteAfter))
        return;
    deliverLink(ref.id, ref.url, QStringLiteral("account ") + shortId,
                Settings::shared().accountPasteFormat(), pasteAfter);
}

void tellNothingFound(const QString &baseURL) {
    log(QStringLiteral("enrich: no Jira, Confluence, or ID reference found on the clipboard"));
    if (baseURL.isEmpty())
        tell(QStringLiteral("Set your Atlassian site URL in Preferences → Connection."));
    else
        tell(QStringLiteral("Clipboard doesn't contain a Jira link, Confluence link, or linkable "
                            "ID."));
}

template <class... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>; // clang before 17 doesn't deduce it by itself

} // namespace

void Enrichment::run(bool pasteAfter) {
    log(QStringLiteral("enrich: triggered (pasteAfter=%1)")
            .arg(pasteAfter ? QStringLiteral("true") : QStringLiteral("false")));
    if (isBusy() || !clipboardHasText())
        return;
    const QString baseURL = Settings::shared().baseURL();
    const auto ref = detectRef(baseURL);
    if (!ref) {
        tellNothingFound(baseURL);
        return;
    }
    std::visit(
        Overloaded{[&](const JiraRef &jira) { runJira(jira, baseURL, pasteAfter); },
                   [&](const ConfluenceRef &page) { runConfluence(page, baseURL, pasteAfter); },
                   [&](const AccountRef &account) { runAccount(account, pasteAfter); }},
        *ref);
}
