#include "SampleSite.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

GatewayReply json(const QJsonObject &body) {
    return {.body = QJsonDocument(body).toJson(QJsonDocument::Compact)};
}

GatewayReply issue(const QString &summary, const QString &type, const QString &status) {
    return json({{u"fields"_s, QJsonObject{{u"summary"_s, summary},
                                           {u"issuetype"_s, QJsonObject{{u"name"_s, type}}},
                                           {u"status"_s, QJsonObject{{u"name"_s, status}}}}}});
}

GatewayReply comment(const QString &author, const QString &text) {
    const QJsonObject words{{u"type"_s, u"text"_s}, {u"text"_s, text}};
    const QJsonObject paragraph{{u"type"_s, u"paragraph"_s}, {u"content"_s, QJsonArray{words}}};
    return json({{u"author"_s, QJsonObject{{u"displayName"_s, author}}},
                 {u"body"_s, QJsonObject{{u"type"_s, u"doc"_s},
                                         {u"version"_s, 1},
                                         {u"content"_s, QJsonArray{paragraph}}}}});
}

} // namespace

QString SampleSite::address() {
    return u"https://acme.atlassian.net"_s;
}

QStringList SampleSite::hosts() {
    return {u"acme.atlassian.net"_s, u"api.atlassian.com"_s};
}

QHash<QString, GatewayReply> SampleSite::replies() {
    const QString jira = u"/ex/jira/acme-cloud/rest/api/3/issue/"_s;
    const QString fields = u"?fields=summary,issuetype,status"_s;
    return {
        {u"/_edge/tenant_info"_s, json({{u"cloudId"_s, u"acme-cloud"_s}})},
        {jira + u"ACME-7"_s + fields, issue(u"Crash on login"_s, u"Bug"_s, u"In Progress"_s)},
        {jira + u"ACME-12"_s + fields,
         issue(u"Größere Symbole — heute & später 🎈"_s, u"Story"_s, u"Done"_s)},
        {jira + u"ACME-12/comment/10021"_s,
         comment(u"Ann Lee"_s, u"Looks good on the small screen, let us ship it"_s)},
        {u"/ex/confluence/acme-cloud/wiki/api/v2/pages/4711"_s,
         json({{u"title"_s, u"Release plan"_s}})},
    };
}
