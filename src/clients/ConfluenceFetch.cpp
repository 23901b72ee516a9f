#include "clients/ConfluenceClient.h"

void ConfluenceClient::fetchPage(
    const QString &, const QString &, const QString &, const QString &,
    const std::function<void(const ConfluenceFetchResult &)> &completion) {
    completion({{}, QStringLiteral("This version of Brindle can't fetch Confluence titles yet.")});
}
