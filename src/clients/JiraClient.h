#pragma once

#include "model/JiraRef.h"

#include <QStringView>

/// Jira issues: links to them, and what the site says about them.
namespace JiraClient {

/// The issue that `from`, one whole candidate text, links to on the site of the setting `baseURL`,
/// or nothing. Only full links count, and only the host decides whether it is the same site.
/// Pure and linear in the length of the text; usable from any thread.
std::optional<JiraRef> extractRef(QStringView from, const QString &baseURL);

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

/// Fetches what a link template shows of issue `key` and, with `commentId`, of that comment. Calls
/// `completion` once, on any thread. Background threads only.
void fetchSummary(const QString &key, const std::optional<QString> &commentId,
                  const QString &baseURL, const QString &email, const QString &token,
                  const std::function<void(const FetchResult &)> &completion);

} // namespace JiraClient
