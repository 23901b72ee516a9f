#include "clients/ConfluenceClient.h"

#include "clients/Gateway.h"
#include "model/Text.h"
#include "storage/LogStore.h"

using namespace Qt::StringLiterals;

namespace {

QString pagesPath(const QString &cloudId) {
    return Gateway::origin() + u"/ex/confluence/"_s + cloudId + u"/wiki/api/v2/pages"_s;
}

/// The answer to the page request; logs what it is.
ConfluenceClient::ConfluenceFetchResult readPage(const UrlResponse &response,
                                                 const QString &pageId) {
    if (!response.httpStatus) {
        if (!response.transportError.isEmpty())
            log(u"fetchPage: network error "_s + LogStore::excerpt(response.transportError));
        return {{}, Gateway::noResponse(response)};
    }
    const int status = *response.httpStatus;
    log(u"fetchPage: HTTP %1 for page/%2"_s.arg(QString::number(status), pageId));
    if (status != 200)
        return {{}, u"Confluence returned HTTP %1"_s.arg(status)};
    const auto page = Gateway::jsonObject(response.body);
    const auto title = page ? Gateway::stringMember(*page, "title"_L1) : std::nullopt;
    if (!title) {
        log(u"fetchPage: 200 but couldn't parse title"_s);
        return {{}, u"Unable to parse Confluence response"_s};
    }
    log(u"fetchPage: parsed page/%1 title=%2 chars"_s.arg(
        pageId, QString::number(Text::characterCount(*title))));
    return {title, {}};
}

ConfluenceClient::ProbeResult readProbe(const UrlResponse &response) {
    if (!response.httpStatus)
        return {false, Gateway::noResponse(response)};
    if (response.httpStatus == 200)
        return {true, {}};
    return {false,
            u"Confluence token rejected (HTTP %1). Check the scope is read:page:confluence."_s.arg(
                *response.httpStatus)};
}

} // namespace

void ConfluenceClient::fetchPage(
    const QString &pageId, const SiteAccess &site,
    const std::function<void(const ConfluenceFetchResult &)> &completion) {
    const auto cloudId = CloudId::cachedOrDiscovered(site);
    if (!cloudId) {
        completion({{}, cloudId.error()});
        return;
    }
    const auto url = Gateway::url(pagesPath(*cloudId) + u'/' + pageId);
    if (!url) {
        completion({{}, u"Couldn't build API URL"_s});
        return;
    }
    log(u"fetchPage: GET confluence page/%1 via gateway"_s.arg(pageId));
    Platform::current().urlSession->start(Gateway::authorizedRequest(*url, site.email, site.token),
                                          [pageId, completion](const UrlResponse &response) {
                                              completion(readPage(response, pageId));
                                          });
}

ConfluenceClient::ProbeResult
ConfluenceClient::probeToken(const QString &cloudId, const QString &email, const QString &token) {
    const auto url = Gateway::url(pagesPath(cloudId) + u"?limit=1"_s);
    if (!url)
        return {false, u"Couldn't build probe URL"_s};
    const auto result = Gateway::sendAndWait<ProbeResult>(
        Gateway::authorizedRequest(*url, email, token), readProbe);
    return result.value_or(ProbeResult{false, u"Confluence probe timed out"_s});
}
