#include "clients/JiraClient.h"

void JiraClient::fetchSummary(const QString &, const std::optional<QString> &, const QString &,
                              const QString &, const QString &,
                              const std::function<void(const FetchResult &)> &completion) {
    FetchResult result;
    result.error = QStringLiteral("This version of Brindle can't fetch Jira titles yet.");
    completion(result);
}
