#include "clients/CloudId.h"

#include "clients/Gateway.h"
#include "clients/SiteAddress.h"
#include "storage/LogStore.h"
#include "storage/Settings.h"

using namespace Qt::StringLiterals;

namespace {

JiraClient::DiscoverResult failure(const QString &error, std::optional<int> status = {}) {
    return {{}, error, status};
}

QUrl tenantUrl(const QString &baseURL) {
    return QUrl(SiteAddress::withoutSlashes(baseURL) + u"/_edge/tenant_info"_s, QUrl::StrictMode);
}

/// Why no request goes to the site, for the user; empty when one can.
QString problemOf(const QString &baseURL) {
    const QUrl url = tenantUrl(baseURL);
    if (!url.isValid())
        return u"Invalid tenant URL"_s;
    if (url.host().isEmpty() || (url.scheme() != u"https" && url.scheme() != u"http"))
        return u"Site URL must look like https://your-team.atlassian.net."_s;
    if (url.authority().contains(u'@'))
        return u"Site URL must not contain a user name or password."_s;
    return {};
}

/// The site's answer to the tenant lookup.
JiraClient::DiscoverResult readTenant(const UrlResponse &response, const QString &site,
                                      const QString &hostLabel) {
    if (!response.httpStatus)
        return failure(Gateway::noResponse(response));
    const int status = *response.httpStatus;
    const auto body = Gateway::jsonObject(response.body);
    const auto cloudId = body ? Gateway::stringMember(*body, "cloudId"_L1) : std::nullopt;
    if (status != 200 || !cloudId)
        return failure(
            u"Couldn't read cloud ID from %1 (HTTP %2)"_s.arg(hostLabel, QString::number(status)),
            status);
    log(u"discoverResource: 200, cloud ID %1 for %2"_s.arg(LogStore::excerpt(*cloudId), hostLabel));
    return {JiraClient::AccessibleResource{*cloudId, site, hostLabel}, {}, status};
}

} // namespace

SiteAccess SiteAccess::configured() {
    const Settings &settings = Settings::shared();
    return {settings.baseURL(), settings.cloudId(), settings.email(), {}};
}

JiraClient::DiscoverResult JiraClient::discoverResource(const QString &baseURL, const QString &) {
    const QString site = SiteAddress::withoutSlashes(baseURL);
    const auto address = SiteAddress::parse(baseURL);
    const QString hostLabel = address ? address->label : site;
    log(u"discoverResource: looking up cloud ID for "_s + hostLabel);
    if (const QString problem = problemOf(baseURL); !problem.isEmpty())
        return failure(problem);
    const auto result =
        Gateway::sendAndWait<DiscoverResult>(Gateway::anonymousRequest(tenantUrl(baseURL)),
                                             [site, hostLabel](const UrlResponse &response) {
                                                 return readTenant(response, site, hostLabel);
                                             });
    if (!result) {
        log(u"discoverResource: timed out"_s);
        return failure(u"Cloud ID lookup timed out"_s);
    }
    if (result->error)
        log(u"discoverResource: failed (%1)"_s.arg(LogStore::excerpt(*result->error)));
    return *result;
}

Result<QString> CloudId::cachedOrDiscovered(const SiteAccess &site) {
    if (problemOf(site.baseURL).isEmpty()) {
        if (!site.cloudId.isEmpty())
            return site.cloudId;
        // The request that follows goes to the gateway; its connection can come up meanwhile.
        Platform::current().urlSession->prepareConnection(QUrl(Gateway::origin()));
    }
    const auto discovered = JiraClient::discoverResource(site.baseURL, site.token);
    if (!discovered.resource)
        return Result<QString>::failure(discovered.error.value_or(u"Couldn't discover cloud ID"_s));
    const QString id = discovered.resource->cloudId;
    Platform::current().dispatch->toMain([id, baseURL = site.baseURL] { keep(id, baseURL); });
    return id;
}

void CloudId::keep(const QString &cloudId, const QString &baseURL) {
    if (Settings::shared().baseURL() == baseURL)
        Settings::shared().cloudId = cloudId;
}
