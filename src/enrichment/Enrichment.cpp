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

/// From the question to the keyring until its answer is looked at; a fetch may follow. Main thread.
bool isAskingForToken = false;

bool isBusy() {
    const AppDelegate *app = AppDelegate::shared();
    if (isAskingForToken || (app && app->isFetching())) {
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

/// A title to be fetched: what it needs from the keyring and how it is asked for.
struct Fetch {
    QString account; ///< whose token
    QString product;
    QString tokenMessage; ///< for the user without one
    /// On a background thread.
    std::function<void(const QString &email, const QString &token)> send;
};

/// Answers with no text when there is no token or it can't be read.
void askForToken(const QString &account, std::function<void(const QString &token)> answered) {
    isAskingForToken = true;
    Keychain::loadToken(account,
                        [answered = std::move(answered)](const Keychain::TokenAnswer &answer) {
                            isAskingForToken = false;
                            answered(answer.token);
                        });
}

/// Sends the fetch unless something is missing, which the user is told.
void begin(const Fetch &fetch, bool pasteAfter) {
    const QString email = Settings::shared().email();
    if (email.isEmpty()) {
        log(QStringLiteral("enrich: no email configured"));
        tell(QStringLiteral("Email not set. Open Preferences."));
        openPreferences();
        return;
    }
    Platform::current().urlSession->warmUp();
    askForToken(fetch.account, [fetch, email, pasteAfter](const QString &token) {
        if (token.isEmpty()) {
            log(QStringLiteral("enrich: no %1 token configured").arg(fetch.product));
            tell(fetch.tokenMessage);
            openPreferences();
            return;
        }
        if (!mayPaste(pasteAfter))
            return;
        Platform::current().dispatch->toBackground(
            [fetch, email, token] { fetch.send(email, token); });
        // The request is under way while the icon is drawn.
        setFetching(true);
    });
}

/// A completion for any thread that has `finish` run on the main one.
template <class Finish>
auto onMain(Finish finish) {
    return [finish](const auto &result) {
        Platform::current().dispatch->toMain([finish, result] { finish(result); });
    };
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

void tellFailure(const QString &what, const std::optional<QString> &error,
                 const QString &withoutReason) {
    log(QStringLiteral("%1 (%2)").arg(what, error.value_or(QStringLiteral("unknown"))));
    tell(error.value_or(withoutReason));
}

void finishJira(const JiraClient::FetchResult &result, const JiraRef &ref, bool pasteAfter) {
    setFetching(false);
    if (!result.summary) {
        tellFailure(QStringLiteral("enrich: fetch failed"), result.error,
                    QStringLiteral("Failed to fetch ") + ref.key);
        return;
    }
    const QString text = Enrichment::renderTemplate(
        Settings::shared().displayTemplate(), ref.key, result.type, *result.summary, result.status,
        ref.commentId.has_value(), result.commentText, result.commentAuthor);
    deliverLink(text, ref.url, ref.key, Settings::shared().pasteFormat(), pasteAfter);
}

void runJira(const JiraRef &ref, const QString &baseURL, bool pasteAfter) {
    log(QStringLiteral("enrich: detected Jira key ") + ref.key);
    const auto send = [ref, baseURL, pasteAfter](const QString &email, const QString &token) {
        JiraClient::fetchSummary(ref.key, ref.commentId, baseURL, email, token,
                                 onMain([ref, pasteAfter](const JiraClient::FetchResult &result) {
                                     finishJira(result, ref, pasteAfter);
                                 }));
    };
    begin({AppInfo::keychainAccount(), QStringLiteral("Jira"),
           QStringLiteral("Jira API token not set. Open Preferences."), send},
          pasteAfter);
}

void finishConfluence(const ConfluenceClient::ConfluenceFetchResult &result,
                      const ConfluenceRef &ref, bool pasteAfter) {
    setFetching(false);
    if (!result.title) {
        tellFailure(QStringLiteral("enrich: confluence fetch failed"), result.error,
                    QStringLiteral("Failed to fetch Confluence page ") + ref.pageId);
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
    const auto send = [ref, baseURL, pasteAfter](const QString &email, const QString &token) {
        ConfluenceClient::fetchPage(
            ref.pageId, baseURL, email, token,
            onMain([ref, pasteAfter](const ConfluenceClient::ConfluenceFetchResult &result) {
                finishConfluence(result, ref, pasteAfter);
            }));
    };
    begin({AppInfo::keychainAccountConfluence(), QStringLiteral("Confluence"),
           QStringLiteral("Confluence API token not set. Add one in Preferences → Connection."),
           send},
          pasteAfter);
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
