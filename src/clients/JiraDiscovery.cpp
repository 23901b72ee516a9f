#include "clients/JiraClient.h"

#include "clients/Gateway.h"
#include "clients/SiteAddress.h"
#include "storage/LogStore.h"
#include "storage/Settings.h"

using namespace Qt::StringLiterals;

namespace {

JiraClient::DiscoverResult failure(const QString &error, std::optional<int> status = {}) {
    return {{}, error, status};
}

JiraClient::DiscoverResult noResponse(const UrlResponse &response) {
    return failure(response.transportError.isEmpty()
                       ? u"No HTTP response"_s
                       : u"Network error: "_s + response.transportError);
}

/// The site's answer to the tenant lookup.
JiraClient::DiscoverResult readTenant(const UrlResponse &response, const QString &site,
                                      const QString &hostLabel) {
    if (!response.httpStatus)
        return noResponse(response);
    const int status = *response.httpStatus;
    const auto body = Gateway::jsonObject(response.body);
    const auto cloudId = body ? Gateway::stringMember(*body, "cloudId"_L1) : std::nullopt;
    if (status != 200 || !cloudId)
        return failure(
            u"Couldn't read cloud ID from %1 (HTTP %2)"_s.arg(hostLabel, QString::number(status)),
            status);
    log(u"discoverResource: 200, cloud ID %1 for %2"_s.arg(*cloudId, hostLabel));
    return {JiraClient::AccessibleResource{*cloudId, site, hostLabel}, {}, status};
}

JiraClient::DiscoverResult readProbe(const UrlResponse &response, const QString &cloudId) {
    if (!response.httpStatus)
        return noResponse(response);
    const int status = *response.httpStatus;
    log(u"probeToken: HTTP %1"_s.arg(status));
    switch (status) {
    case 200:
        return {JiraClient::AccessibleResource{cloudId, {}, {}}, {}, status};
    case 401:
        return failure(u"Token rejected (HTTP 401). Check the email + token combination."_s,
                       status);
    case 403:
    case 404:
        return failure(
            u"Token lacks read:jira-work for this site (HTTP %1). Re-mint with that scope."_s.arg(
                status),
            status);
    default:
        return failure(u"Gateway returned HTTP %1."_s.arg(status), status);
    }
}

} // namespace

QByteArray JiraClient::basicAuthHeader(const QString &email, const QString &token) {
    return "Basic " + (email + u':' + token).toUtf8().toBase64();
}

JiraClient::DiscoverResult JiraClient::discoverResource(const QString &baseURL, const QString &) {
    const QString site = SiteAddress::withoutSlashes(baseURL);
    const auto address = SiteAddress::parse(baseURL);
    const QString hostLabel = address ? address->host : site;
    log(u"discoverResource: looking up cloud ID for "_s + hostLabel);
    const auto url = Gateway::url(site + u"/_edge/tenant_info"_s);
    if (!url)
        return failure(u"Invalid tenant URL"_s);
    const auto result = Gateway::sendAndWait<DiscoverResult>(
        Gateway::anonymousRequest(*url), [site, hostLabel](const UrlResponse &response) {
            return readTenant(response, site, hostLabel);
        });
    if (!result) {
        log(u"discoverResource: timed out"_s);
        return failure(u"Cloud ID lookup timed out"_s);
    }
    if (result->error)
        log(u"discoverResource: failed (%1)"_s.arg(*result->error));
    return *result;
}

JiraClient::DiscoverResult JiraClient::probeToken(const QString &cloudId, const QString &email,
                                                  const QString &token) {
    const auto url = Gateway::url(Gateway::origin() + u"/ex/jira/"_s + cloudId +
                                  u"/rest/api/3/project/search?maxResults=1"_s);
    if (!url)
        return failure(u"Couldn't build probe URL"_s);
    log(u"probeToken: GET /project/search via gateway"_s);
    const auto result = Gateway::sendAndWait<DiscoverResult>(
        Gateway::authorizedRequest(*url, email, token),
        [cloudId](const UrlResponse &response) { return readProbe(response, cloudId); });
    return result.value_or(failure(u"Token probe timed out"_s));
}

JiraClient::CloudId JiraClient::cachedOrDiscoveredCloudId(const QString &baseURL,
                                                          const QString &token) {
    const QString cached = Settings::shared().cloudId.copy();
    if (!cached.isEmpty())
        return {cached, {}};
    // The request that follows goes to the gateway; its connection can come up meanwhile.
    Platform::current().urlSession->prepareConnection(QUrl(Gateway::origin()));
    const DiscoverResult discovered = discoverResource(baseURL, token);
    if (!discovered.resource)
        return {{}, discovered.error.value_or(u"Couldn't discover cloud ID"_s)};
    const QString cloudId = discovered.resource->cloudId;
    Platform::current().dispatch->toMain([cloudId, baseURL] {
        // The id of a site that was edited meanwhile would send later fetches to the wrong one.
        if (Settings::shared().baseURL() == baseURL)
            Settings::shared().cloudId = cloudId;
    });
    return {cloudId, {}};
}
