#include "clients/Gateway.h"
#include "clients/JiraClient.h"
#include "storage/LogStore.h"

using namespace Qt::StringLiterals;

namespace JiraClient {

namespace {

DiscoverResult failure(const QString &error, std::optional<int> status = {}) {
    return {{}, error, status};
}

DiscoverResult readProbe(const UrlResponse &response, const QString &cloudId) {
    if (!response.httpStatus)
        return failure(Gateway::noResponse(response));
    const int status = *response.httpStatus;
    log(u"probeToken: HTTP %1"_s.arg(status));
    switch (status) {
    case 200:
        return {AccessibleResource{cloudId, {}, {}}, {}, status};
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

DiscoverResult probeToken(const QString &cloudId, const QString &email, const QString &token) {
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

} // namespace JiraClient
