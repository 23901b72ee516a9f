#pragma once

#include "e2e/Scene.h"
#include "stage/LoopbackGateway.h"

inline const QString issue = "https://h.example/browse/ABC-1";
inline const QString page = "https://h.example/wiki/spaces/ENG/pages/12/T";

inline const QString tenantTarget = "/_edge/tenant_info";
inline const QString issueTarget =
    "/ex/jira/c-1/rest/api/3/issue/ABC-1?fields=summary,issuetype,status";
inline const QString commentTarget = "/ex/jira/c-1/rest/api/3/issue/ABC-1/comment/77";
inline const QString pageTarget = "/ex/confluence/c-1/wiki/api/v2/pages/12";

/// A user with a site and both tokens in the keyring, and Brindle led to the gateway.
struct Site : Scene {
    explicit Site(QMap<QString, QString> settings = {},
                  DesktopOptions options = {.notifications = true, .keyring = true})
        : Scene(options) {
        gateway.replies = {
            {tenantTarget, {.body = R"({"cloudId":"c-1"})"}},
            {issueTarget,
             {.body = R"({"fields":{"summary":"é — 🐞 <b> &","issuetype":{"name":"Bug"},)"
                      R"("status":{"name":"Done"}}})"}},
            {commentTarget,
             {.body = R"({"author":{"displayName":"Ann Lee"},"body":{"content":[)"
                      R"({"type":"text","text":"Looks good"}]}})"}},
            {pageTarget, {.body = R"({"title":"Plan"})"}}};
        settings.insert("jiraBaseURL", "https://h.example");
        start(settings, BRINDLE_ON_STAGE_PROGRAM,
              {QString::number(gateway.port()), gateway.certificate()});
    }

    bool isReady() {
        return storeToken(desktop, "confluence-api-token", "confluence-secret") && isUp() &&
               openTarget();
    }

    LoopbackGateway gateway;
};
