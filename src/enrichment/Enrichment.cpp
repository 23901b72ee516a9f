#include "enrichment/Enrichment.h"

#include "clients/AccountClient.h"
#include "clients/ConfluenceClient.h"
#include "clients/JiraClient.h"
#include "clients/TokenRequest.h"
#include "clipboard/Clipboard.h"
#include "clipboard/ClipboardRestorer.h"
#include "desktop/Access.h"
#include "desktop/CurrentRun.h"
#include "enrichment/Delivery.h"
#include "enrichment/ReferenceDetection.h"
#include "enrichment/TemplateRendering.h"
#include "enrichment/TitleFetch.h"
#include "model/AppInfo.h"
#include "model/Text.h"
#include "platform/Platform.h"
#include "storage/LogStore.h"
#include "storage/Settings.h"

namespace {

bool isBusy() {
    if (CurrentRun::isGettingTheLink()) {
        log(QStringLiteral("enrich: a fetch is already in flight — ignoring re-trigger"));
        return true;
    }
    if (ClipboardRestorer::isDelivering()) {
        log(QStringLiteral("enrich: a paste is already in flight — ignoring re-trigger"));
        return true;
    }
    return CurrentRun::phase() == RunPhase::Ended;
}

/// A link to be put on the clipboard.
struct Link {
    QString displayText;
    QString url;
    QString label; ///< what the log calls it
    PasteFormat format;
};

/// How often the clipboard may change under our hands before a run gives up.
constexpr int mostWrites = 5;

void deliverLink(const Link &link, const Run &run, int attempt = 1);

/// Somebody has copied something since the clipboard was read: what is given back later must be
/// that.
void readAnewAndDeliver(const Link &link, const Run &run, int attempt) {
    ClipboardRestorer::disarm();
    if (attempt == mostWrites) {
        Run::giveUp(QStringLiteral("enrich: the clipboard could not be written"),
                    QStringLiteral("Couldn't write to the clipboard."));
        return;
    }
    Platform::current().pasteboard->read([link, run, attempt](const ClipboardContents &contents) {
        Run again = run;
        again.original = contents;
        deliverLink(link, again, attempt + 1);
    });
}

/// The steps that all three kinds share once the display text is known.
void deliverLink(const Link &link, const Run &run, int attempt) {
    CurrentRun::enter(RunPhase::Writing);
    const bool restores = run.pasteAfter && Settings::shared().restoreClipboardAfterPaste();
    if (restores)
        ClipboardRestorer::arm(run.original);
    const auto count = restores ? std::optional(run.original.changeCount) : std::nullopt;
    const QString plain = Clipboard::plainRepresentation(link.displayText, link.url, link.format);
    Clipboard::write(link.displayText, link.url, link.format, count,
                     [link, run, attempt, plain](const std::optional<PasteboardWrite> &written) {
                         if (!written) {
                             readAnewAndDeliver(link, run, attempt);
                             return;
                         }
                         log(QStringLiteral("enrich: clipboard updated for %1 (format=%2)")
                                 .arg(link.label, PasteFormats::rawValue(link.format)));
                         Enrichment::deliverPaste(plain, run.pasteAfter, *written);
                     });
}

void tellFailure(const QString &what, const std::optional<QString> &error,
                 const QString &withoutReason) {
    Run::giveUp(QStringLiteral("%1 (%2)").arg(what, error.value_or(QStringLiteral("unknown"))),
                error.value_or(withoutReason));
}

void finishJira(const JiraClient::FetchResult &result, const JiraRef &ref, const Run &run) {
    if (!result.summary) {
        tellFailure(QStringLiteral("enrich: fetch failed"), result.error,
                    QStringLiteral("Failed to fetch ") + ref.key);
        return;
    }
    const QString text = Enrichment::renderTemplate(
        Settings::shared().displayTemplate(), ref.key, result.type, *result.summary, result.status,
        ref.commentId.has_value(), result.commentText, result.commentAuthor);
    deliverLink({text, ref.url, ref.key, Settings::shared().pasteFormat()}, run);
}

void runJira(const JiraRef &ref, const Run &run) {
    log(QStringLiteral("enrich: detected Jira key ") + ref.key);
    const auto send = [ref](const Run &current, const SiteAccess &site) {
        JiraClient::fetchSummary(
            ref.key, ref.commentId, site,
            TokenRequest::onMain([ref, current](const JiraClient::FetchResult &result) {
                finishJira(result, ref, current);
            }));
    };
    TitleFetch{AppInfo::keychainAccount(), QStringLiteral("Jira"),
               QStringLiteral("Jira API token not set. Open Preferences."), send}
        .start(run);
}

void finishConfluence(const ConfluenceClient::ConfluenceFetchResult &result,
                      const ConfluenceRef &ref, const Run &run) {
    if (!result.title) {
        tellFailure(QStringLiteral("enrich: confluence fetch failed"), result.error,
                    QStringLiteral("Failed to fetch Confluence page ") + ref.pageId);
        return;
    }
    const QString text =
        Enrichment::renderConfluenceTemplate(Settings::shared().confluenceTemplate(), *result.title,
                                             ref.spaceKey, ref.typeLabel(), ref.pageId);
    deliverLink({text, ref.url, QStringLiteral("confluence page ") + ref.pageId,
                 Settings::shared().pasteFormat()},
                run);
}

void runConfluence(const ConfluenceRef &ref, const Run &run) {
    log(QStringLiteral("enrich: detected Confluence page %1 in %2").arg(ref.pageId, ref.spaceKey));
    const auto send = [ref](const Run &current, const SiteAccess &site) {
        ConfluenceClient::fetchPage(
            ref.pageId, site,
            TokenRequest::onMain(
                [ref, current](const ConfluenceClient::ConfluenceFetchResult &result) {
                    finishConfluence(result, ref, current);
                }));
    };
    TitleFetch{AppInfo::keychainAccountConfluence(), QStringLiteral("Confluence"),
               QStringLiteral("Confluence API token not set. Add one in Preferences → Connection."),
               send}
        .start(run);
}

void runAccount(const AccountRef &ref, Run run) {
    const QString shortId = ref.id.left(6) + u'…';
    log(QStringLiteral("enrich: detected ID ") + shortId);
    if (!run.mayGoOn()) {
        Run::giveUp();
        return;
    }
    deliverLink({ref.id, ref.url, QStringLiteral("account ") + shortId,
                 Settings::shared().accountPasteFormat()},
                run);
}

void tellNothingFound(const QString &baseURL) {
    Run::giveUp(
        QStringLiteral("enrich: no Jira, Confluence, or ID reference found on the clipboard"),
        baseURL.isEmpty()
            ? QStringLiteral("Set your Atlassian site URL in Preferences → Connection.")
            : QStringLiteral("Clipboard doesn't contain a Jira link, Confluence link, or linkable "
                             "ID."));
}

template <class... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>; // clang before 17 doesn't deduce it by itself

void goOn(const ClipboardContents &contents, bool pasteAfter) {
    if (!contents.text || Text::trimmedView(*contents.text).isEmpty()) {
        Run::giveUp(QStringLiteral("enrich: clipboard empty or not text"),
                    QStringLiteral("Clipboard is empty or not text."));
        return;
    }
    const Run run{
        pasteAfter, Settings::shared().baseURL(), {contents.changeCount, {}, {}, contents.items}};
    const auto ref = Enrichment::detectRef(contents, run.baseURL, AccountClient::normalizedBase());
    if (!ref) {
        tellNothingFound(run.baseURL);
        return;
    }
    std::visit(Overloaded{[&](const JiraRef &jira) { runJira(jira, run); },
                          [&](const ConfluenceRef &page) { runConfluence(page, run); },
                          [&](const AccountRef &account) { runAccount(account, run); }},
               *ref);
}

} // namespace

void Enrichment::run(bool pasteAfter) {
    log(QStringLiteral("enrich: triggered (pasteAfter=%1)")
            .arg(pasteAfter ? QStringLiteral("true") : QStringLiteral("false")));
    if (isBusy())
        return;
    Pasteboard &pasteboard = *Platform::current().pasteboard;
    if (const QString reason = pasteboard.unavailableBecause(); !reason.isEmpty()) {
        Run::giveUp(QStringLiteral("enrich: there is no clipboard (%1)").arg(reason),
                    Access::clipboardProblem());
        return;
    }
    CurrentRun::enter(RunPhase::Reading);
    pasteboard.read(
        [pasteAfter](const ClipboardContents &contents) { goOn(contents, pasteAfter); });
}
