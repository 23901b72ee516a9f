#pragma once

#include "clients/CloudId.h"
#include "model/JiraRef.h"

#include <QJsonValue>
#include <QString>
#include <QStringView>

#include <functional>
#include <optional>

/// Jira issues: links to them, and what the site says about them. No operation logs or keeps a
/// credential.
namespace JiraClient {

/// The issue that `from`, one whole candidate text, links to on the site of the setting `baseURL`,
/// or nothing. Only full links count, and only the host decides whether it is the same site.
/// Pure and linear in the length of the text; usable from any thread.
std::optional<JiraRef> extractRef(QStringView from, const QString &baseURL);

/// Whether the credentials may read Jira on that site. Blocks for 15 seconds at most; background
/// threads only.
DiscoverResult probeToken(const QString &cloudId, const QString &email, const QString &token);

/// What a fetch brought. A successful one always has a summary; a failed one has only `error`, a
/// message for the user.
struct FetchResult {
    std::optional<QString> summary;
    std::optional<QString> type;
    std::optional<QString> status;
    std::optional<QString> commentText;
    std::optional<QString> commentAuthor;
    std::optional<QString> error;
};

/// Fetches what a link template shows of issue `key` and, with `commentId`, of that comment; a
/// comment that can't be loaded is no failure. Calls `completion` once, on the session's thread or,
/// when no request could be sent, on the calling one. May block for a discovery; background threads
/// only.
void fetchSummary(const QString &key, const std::optional<QString> &commentId,
                  const SiteAccess &site,
                  const std::function<void(const FetchResult &)> &completion);

/// The text of a document-format tree on one line: its text nodes, joined by single spaces level by
/// level. `depth` is that of `node`; below 100 levels nothing counts. Pure.
QString adfPlainText(const QJsonValue &node, int depth);

} // namespace JiraClient
