#pragma once

#include "model/Result.h"

#include <QString>

#include <optional>

/// Where a fetch goes and as whom: values, so that it needs no setting on its own thread.
struct SiteAccess {
    QString baseURL; ///< as the user typed it
    QString cloudId; ///< empty as long as it is not known
    QString email;
    QString token;

    /// That of the settings, still without a token. Main thread.
    static SiteAccess configured();

    SiteAccess withToken(const QString &withThis) const {
        return {baseURL, cloudId, email, withThis};
    }
};

namespace JiraClient {

/// A site that the gateway knows.
struct AccessibleResource {
    QString cloudId;
    QString siteUrl;  ///< without "/" at its ends; empty from a probe
    QString siteName; ///< its host as typed; empty from a probe
};

/// Either a resource or an error for the user, and the HTTP status when there was a response.
struct DiscoverResult {
    std::optional<AccessibleResource> resource;
    std::optional<QString> error;
    std::optional<int> httpStatus;
};

/// Asks the site for its cloud id, without credentials (`token` is not sent). An address that can't
/// be a site's is not asked. Blocks for 15 seconds at most; background threads only.
DiscoverResult discoverResource(const QString &baseURL, const QString &token);

} // namespace JiraClient

/// The id that the gateway knows a site by, whichever product is asked for.
namespace CloudId {

/// The id of `site`: the one it has or, without one, the site's answer, which is then kept. Fails,
/// with an error for the user, for a site that links must not lead to, whatever is known of it.
/// Blocks like discoverResource().
Result<QString> cachedOrDiscovered(const SiteAccess &site);

/// Stores the id found for the site `baseURL`, unless that was edited meanwhile: it would send
/// later fetches to the wrong one. Main thread.
void keep(const QString &cloudId, const QString &baseURL);

} // namespace CloudId
