#include "clients/JiraClient.h"

#include "clients/Gateway.h"
#include "model/Text.h"
#include "storage/LogStore.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace {

using Completion = std::function<void(const JiraClient::FetchResult &)>;

/// Deeper nodes of a document contribute nothing.
constexpr int deepestLevel = 99;

/// Where a fetch sends its requests, and as whom.
struct Access {
    QString issuePath; ///< the gateway's URL of the issue
    QString email;
    QString token;

    std::optional<UrlRequest> request(const QString &suffix) const {
        const auto url = Gateway::url(issuePath + suffix);
        return url ? std::optional(Gateway::authorizedRequest(*url, email, token)) : std::nullopt;
    }
};

QString orNone(const std::optional<QString> &text) {
    return text ? LogStore::excerpt(*text) : u"(none)"_s;
}

JiraClient::FetchResult failure(const QString &error) {
    JiraClient::FetchResult result;
    result.error = error;
    return result;
}

void appendText(QString &out, const QJsonValue &node, int depth) {
    if (depth > deepestLevel)
        return;
    const QJsonObject object = node.toObject();
    if (node.isObject() && object.value("type"_L1) == "text"_L1 &&
        object.value("text"_L1).isString()) {
        out += object.value("text"_L1).toString();
        return;
    }
    const QJsonArray children =
        node.isArray() ? node.toArray() : object.value("content"_L1).toArray();
    for (qsizetype i = 0; i < children.size(); ++i) {
        if (i > 0)
            out += u' ';
        appendText(out, children.at(i), depth + 1);
    }
}

/// Adds the comment to `result` if the answer has it.
void readComment(const UrlResponse &response, const QString &commentId,
                 JiraClient::FetchResult &result) {
    const bool isOk = response.httpStatus == 200;
    const auto comment = isOk ? Gateway::jsonObject(response.body) : std::nullopt;
    if (!comment) {
        log(u"fetchCommentText: failed to load comment "_s + commentId);
        return;
    }
    const QString text = Text::trimmed(JiraClient::adfPlainText(comment->value("body"_L1), 0));
    const auto displayName = Gateway::stringMember(*comment, "author"_L1, "displayName"_L1);
    const QStringList names = Text::words(displayName.value_or(QString()), 1);
    if (!names.isEmpty())
        result.commentAuthor = names.constFirst();
    if (!text.isEmpty())
        result.commentText = text;
    log(u"fetchCommentText: %1 chars, author=%2"_s.arg(QString::number(Text::characterCount(text)),
                                                       orNone(result.commentAuthor)));
}

void fetchCommentText(const Access &access, const QString &commentId,
                      const JiraClient::FetchResult &issue, const Completion &completion) {
    const auto request = access.request(u"/comment/"_s + commentId);
    if (!request) {
        completion(issue);
        return;
    }
    log(u"fetchCommentText: GET comment/%1 via gateway"_s.arg(commentId));
    Platform::current().urlSession->start(
        *request, [commentId, issue, completion](const UrlResponse &response) {
            JiraClient::FetchResult result = issue;
            readComment(response, commentId, result);
            completion(result);
        });
}

/// The answer to the issue request; logs what it is.
JiraClient::FetchResult readIssue(const UrlResponse &response, const QString &key) {
    if (!response.httpStatus) {
        log(response.transportError.isEmpty()
                ? u"fetchSummary: no HTTP response"_s
                : u"fetchSummary: network error "_s + LogStore::excerpt(response.transportError));
        return failure(Gateway::noResponse(response));
    }
    const int status = *response.httpStatus;
    log(u"fetchSummary: HTTP %1 for issue/%2"_s.arg(QString::number(status), key));
    if (status != 200)
        return failure(u"Jira returned HTTP %1"_s.arg(status));
    const QJsonObject fields =
        Gateway::jsonObject(response.body).value_or(QJsonObject()).value("fields"_L1).toObject();
    JiraClient::FetchResult result;
    result.summary = Gateway::stringMember(fields, "summary"_L1);
    if (!result.summary) {
        log(u"fetchSummary: 200 but couldn't parse response body"_s);
        return failure(u"Unable to parse Jira response"_s);
    }
    result.type = Gateway::stringMember(fields, "issuetype"_L1, "name"_L1);
    result.status = Gateway::stringMember(fields, "status"_L1, "name"_L1);
    log(u"fetchSummary: parsed key=%1 type=%2 status=%3 summary=%4 chars"_s.arg(
        key, orNone(result.type), orNone(result.status),
        QString::number(Text::characterCount(*result.summary))));
    return result;
}

} // namespace

QString JiraClient::adfPlainText(const QJsonValue &node, int depth) {
    QString text;
    appendText(text, node, depth);
    return text;
}

void JiraClient::fetchSummary(const QString &key, const std::optional<QString> &commentId,
                              const SiteAccess &site, const Completion &completion) {
    const auto cloudId = CloudId::cachedOrDiscovered(site);
    if (!cloudId) {
        completion(failure(cloudId.error()));
        return;
    }
    const Access access{Gateway::origin() + u"/ex/jira/"_s + *cloudId + u"/rest/api/3/issue/"_s +
                            key,
                        site.email, site.token};
    const auto request = access.request(u"?fields=summary,issuetype,status"_s);
    if (!request) {
        completion(failure(u"Couldn't build API URL"_s));
        return;
    }
    log(u"fetchSummary: GET issue/%1 via gateway"_s.arg(key));
    Platform::current().urlSession->start(
        *request, [access, key, commentId, completion](const UrlResponse &response) {
            const FetchResult result = readIssue(response, key);
            if (result.summary && commentId)
                fetchCommentText(access, *commentId, result, completion);
            else
                completion(result);
        });
}
