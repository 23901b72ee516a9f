#include "clients/ConfluenceClient.h"
#include "clients/JiraClient.h"
#include "fakes/FakePlatform.h"
#include "fuzz/Fuzz.h"
#include "model/Text.h"
#include "storage/Settings.h"

using namespace Qt::StringLiterals;
using Fuzz::require;

namespace {

const QString email = u"ann@mail.example"_s;
const QString token = u"tok-6b0f3c1d9a"_s;
const QString site = u"https://h.example"_s;

/// Answers the requests of an input one after the other with its fields: a status, then a body.
/// An empty status stands for a failed connection, which the body explains.
class AnsweringSession : public UrlSession {
public:
    TaskId start(const UrlRequest &request, Completion completion) override {
        checkRequest(request);
        UrlResponse response;
        const QByteArray status = fields->next();
        const QByteArray body = fields->next();
        if (status.isEmpty())
            response.transportError = Fuzz::text(body);
        else
            response.httpStatus = status == "200" ? 200 : 100 + qAbs(status.toInt()) % 500;
        response.body = body;
        completion(response);
        return 0;
    }
    void cancelAll() override {}
    void cancel(TaskId) override { require(false, "an answered request is not cancelled"); }
    void warmUp() override {}
    void prepareConnection(const QUrl &) override {}

    Fuzz::Fields *fields = nullptr;

private:
    void checkRequest(const UrlRequest &request) {
        const QString origin =
            request.url.toString(QUrl::RemovePath | QUrl::RemoveQuery | QUrl::RemoveFragment);
        bool isAuthorized = false;
        for (const auto &[name, value] : request.headers)
            isAuthorized |= name == "Authorization";
        require(request.url.isValid() &&
                    origin == (isAuthorized ? u"https://api.atlassian.com"_s : site),
                "credentials go to the gateway, and the site is asked without any");
        require(!request.url.toString().contains(token), "no credential is in an address");
    }
};

/// Every port a fetch uses, and what it logged.
struct Desk {
    Desk() { Platform::current().urlSession = session; }

    FakePlatform platform;
    std::shared_ptr<AnsweringSession> session = std::make_shared<AnsweringSession>();
};

void checkJira(const JiraClient::FetchResult &result) {
    if (result.error) {
        require(!result.summary && !result.type && !result.status && !result.commentText &&
                    !result.commentAuthor,
                "a failed fetch has only its error");
        require(!result.error->isEmpty(), "an error says something");
        return;
    }
    require(result.summary.has_value(), "a fetch that did not fail has a summary");
    require(!result.commentText || (!result.commentText->isEmpty() &&
                                    Text::trimmed(*result.commentText) == *result.commentText),
            "a comment's text is trimmed and not empty");
    require(!result.commentAuthor ||
                (Text::words(*result.commentAuthor) == QStringList(*result.commentAuthor)),
            "a commenter's first name is one word");
}

SiteAccess access() {
    return {site, Settings::shared().cloudId(), email, token};
}

void fetchIssue() {
    int completions = 0;
    JiraClient::fetchSummary(u"ABC-1"_s, u"10044"_s, access(),
                             [&](const JiraClient::FetchResult &result) {
                                 ++completions;
                                 checkJira(result);
                             });
    require(completions == 1, "an issue is answered once");
}

void fetchPage() {
    int completions = 0;
    ConfluenceClient::fetchPage(u"12"_s, access(),
                                [&](const ConfluenceClient::ConfluenceFetchResult &result) {
                                    ++completions;
                                    require(result.title.has_value() != result.error.has_value(),
                                            "a page has a title or an error");
                                });
    require(completions == 1, "a page is answered once");
}

void probe() {
    const auto found = JiraClient::discoverResource(site, token);
    require(found.resource.has_value() != found.error.has_value(), "a site or an error");
    require(!found.resource || found.resource->siteUrl == site, "the site that was asked");
    const QString cloudId = found.resource ? found.resource->cloudId : u"c"_s;
    const auto jira = JiraClient::probeToken(cloudId, email, token);
    require(jira.resource.has_value() != jira.error.has_value(), "a Jira token is good or not");
    const auto confluence = ConfluenceClient::probeToken(cloudId, email, token);
    require(confluence.ok != confluence.error.has_value(), "a Confluence token is good or not");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static Desk &desk = *new Desk; // outlives every static
    Fuzz::Fields fields(data, size);
    desk.session->fields = &fields;
    Settings::shared().baseURL = site;
    const QByteArray kind = fields.next();
    Settings::shared().cloudId = fields.nextText();
    desk.platform.dispatch->onBackground([&] {
        if (kind == "issue")
            fetchIssue();
        else if (kind == "page")
            fetchPage();
        else
            probe();
    });
    desk.platform.dispatch->drain();
    const QString lines = desk.platform.takeLog().join(u'\n');
    require(!lines.contains(token) && !lines.contains(email), "nothing secret is logged");
    return 0;
}
