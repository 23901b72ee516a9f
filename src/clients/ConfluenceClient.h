#pragma once

#include "clients/CloudId.h"
#include "model/ConfluenceRef.h"

#include <QString>
#include <QStringView>

#include <functional>
#include <optional>

/// Confluence pages and blog posts: links to them, and what the site says about them. No operation
/// logs or keeps a credential.
namespace ConfluenceClient {

/// The page or blog post that `from`, one whole candidate text, links to on the site of the setting
/// `baseURL`, or nothing. Only the host decides whether it is the same site. Pure and linear in the
/// length of the text; usable from any thread.
std::optional<ConfluenceRef> extractRef(QStringView from, const QString &baseURL);

/// What a fetch brought: a title, or a message for the user.
struct ConfluenceFetchResult {
    std::optional<QString> title;
    std::optional<QString> error;
};

/// Fetches the title of a page or blog post. Calls `completion` once, on the session's thread or,
/// when no request could be sent, on the calling one. May block for a discovery; background threads
/// only.
void fetchPage(const QString &pageId, const SiteAccess &site,
               const std::function<void(const ConfluenceFetchResult &)> &completion);

/// `error` is a message for the user, present exactly when it is not ok.
struct ProbeResult {
    bool ok = false;
    std::optional<QString> error;
};

/// Whether the credentials may read pages on that site. Blocks for 15 seconds at most; background
/// threads only.
ProbeResult probeToken(const QString &cloudId, const QString &email, const QString &token);

} // namespace ConfluenceClient
