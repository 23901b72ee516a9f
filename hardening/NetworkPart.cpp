#include "hardening/Parts.h"

#include "stage/Actors.h"
#include "stage/BrindleProcess.h"
#include "stage/Keyring.h"
#include "stage/LoopbackGateway.h"
#include "stage/NotificationLog.h"

namespace {

const QString issue = "https://h.example/browse/ABC-1";
const QString comment = issue + "?focusedCommentId=77";
const QString page = "https://h.example/wiki/spaces/ENG/pages/12/T";

const QString siteTarget = "/_edge/tenant_info";
const QString issueTarget = "/ex/jira/c-1/rest/api/3/issue/ABC-1?fields=summary,issuetype,status";
const QString commentTarget = "/ex/jira/c-1/rest/api/3/issue/ABC-1/comment/77";
const QString pageTarget = "/ex/confluence/c-1/wiki/api/v2/pages/12";

const QHash<QString, GatewayReply> goodReplies{
    {siteTarget, {.body = R"({"cloudId":"c-1"})"}},
    {issueTarget, {.body = R"({"fields":{"summary":"Title"}})"}},
    {commentTarget,
     {.body = R"({"author":{"displayName":"Ann"},"body":{"type":"text","text":"Hm"}})"}},
    {pageTarget, {.body = R"({"title":"Plan"})"}}};

/// The product led to a gateway and in front of an editor.
struct Scene {
    explicit Scene(Findings &given, QMap<QString, QString> settings = {},
                   const QStringList &names = {"api.atlassian.com", "h.example"},
                   const QString &program = BRINDLE_ON_STAGE_PROGRAM,
                   const QString &certificate = {})
        : findings(given),
          desktop({.notifications = true, .keyring = true}),
          shown(desktop.busAddress()),
          gateway(names) {
        const bool tokensStored = storeToken(desktop, "jira-api-token", "t1") &&
                                  storeToken(desktop, "confluence-api-token", "t2");
        gateway.replies = goodReplies;
        settings.insert({{"jiraEmail", "ann@h.example"},
                         {"pasteFormat", "plainText"},
                         {"displayTemplate", "{summary}<c> {commenttext}</c>"},
                         {"confluenceTemplate", "{title}"}});
        if (!settings.contains("jiraBaseURL"))
            settings.insert("jiraBaseURL", "https://h.example");
        brindle = std::make_unique<BrindleProcess>(
            desktop, settings, program,
            QStringList{QString::number(gateway.port()),
                        certificate.isEmpty() ? gateway.certificate() : certificate});
        target = std::make_unique<PasteTarget>(desktop);
        isUp = findings.check(desktop.problem().isEmpty() && gateway.problem().isEmpty() &&
                                  tokensStored && brindle->isUp() &&
                                  waitFor([this] { return target->hasFocus(); }),
                              "the desktop does not come up: " + desktop.problem());
    }

    /// A run that must end in that message, or one that begins so, and change nothing.
    void fails(const QString &what, const QString &copied, const QString &message) {
        const ClipboardOwner owner(desktop, {{"UTF8_STRING", copied.toUtf8()}});
        target->forgetEvents();
        const qsizetype before = shown.notifications().size();
        brindle->activate("enrich");
        constexpr int longest = 90000; // a dripping server is given up after a minute
        if (!findings.check(shown.waitForAccepted(before + 1, longest), what + ": nothing is told"))
            return;
        const QString body = shown.notifications().constLast().body;
        Findings::note(what + ": " + body);
        findings.check(body.startsWith(message) && body != QString("Network error: "),
                       what + ": not what should be told");
        findings.check(owner.ownsClipboard() && target->pasteCount() == 0,
                       what + ": something has changed");
    }

    /// A run that must paste that text and tell nothing.
    void pastes(const QString &what, const QString &copied, const QString &text) {
        const ClipboardOwner owner(desktop, {{"UTF8_STRING", copied.toUtf8()}});
        target->forgetEvents();
        const qsizetype before = shown.notifications().size();
        brindle->activate("enrich");
        const auto paste = target->waitForPaste(0, 90000);
        findings.check(paste && paste->text == text + " (" + copied + ")",
                       what + ": pasted " + (paste ? paste->text : "nothing"));
        findings.check(shown.notifications().size() == before, what + ": something is told");
        // A run that follows too soon would be ignored.
        waitFor([&] { return !owner.ownsClipboard(); });
        waitFor([&] { return false; }, 700);
    }

    Findings &findings;
    VirtualDesktop desktop;
    NotificationLog shown;
    LoopbackGateway gateway;
    std::unique_ptr<BrindleProcess> brindle;
    std::unique_ptr<PasteTarget> target;
    bool isUp = false;
};

struct Fault {
    QString name;
    GatewayReply reply;
    QString message; ///< of a fetch
    QString lookup;  ///< of the look-up of the site
};

QList<Fault> faults() {
    using Manner = GatewayReply::Manner;
    const QByteArray body(100000, ' ');
    const QString any = "Network error: ";
    const QString silent = "Network error: The request timed out.";
    const QString large = "Network error: The response is too large.";
    return {{"reset", {.body = body, .manner = Manner::Reset}, any, any},
            {"closed", {.manner = Manner::Close}, any, any},
            {"truncated", {.body = body, .manner = Manner::Truncated}, any, any},
            {"no HTTP", {.manner = Manner::Babble}, any, any},
            {"stalled", {.body = body, .manner = Manner::Stalled}, silent, silent},
            {"too large", {.body = QByteArray(17 << 20, 'x')}, large, large},
            {"dripping", {.manner = Manner::Drip}, silent, "Cloud ID lookup timed out"}};
}

void faultsOfTheGateway(Findings &findings) {
    Scene scene(findings);
    if (!scene.isUp)
        return;
    for (const Fault &fault : faults()) {
        scene.gateway.replies[siteTarget] = fault.reply;
        scene.fails("site " + fault.name, issue, fault.lookup);
    }
    scene.gateway.replies = goodReplies;
    scene.pastes("site again", issue, "Title");
    for (const Fault &fault : faults()) {
        scene.gateway.replies[issueTarget] = scene.gateway.replies[pageTarget] = fault.reply;
        scene.fails("issue " + fault.name, issue, fault.message);
        scene.fails("page " + fault.name, page, fault.message);
        scene.gateway.replies = goodReplies;
        scene.gateway.replies[commentTarget] = fault.reply;
        scene.pastes("comment " + fault.name, comment, "Title");
        scene.gateway.replies = goodReplies;
        scene.pastes("comment again", comment, "Title “Hm”");
        scene.pastes("page again", page, "Plan");
    }
}

void strangersAndNobody(Findings &findings) {
    const QMap<QString, QString> known{{"jiraCloudId", "c-1"}};
    const LoopbackGateway issuer;
    for (const bool isNamed : {true, false}) {
        Scene scene(findings, known,
                    isNamed ? QStringList{"other.example"}
                            : QStringList{"h.example", "api.atlassian.com"},
                    BRINDLE_ON_STAGE_PROGRAM, isNamed ? QString() : issuer.certificate());
        if (!scene.isUp)
            return;
        const QString what = isNamed ? "certificate of another name" : "unknown issuer";
        scene.fails(what, issue, "Network error: ");
        scene.fails(what, page, "Network error: ");
        findings.check(scene.gateway.requests.isEmpty(), what + ": was sent a request");
        scene.gateway.close();
        scene.fails("nobody listens", issue, "Network error: ");
    }
    Scene scene(findings, {{"jiraBaseURL", "https://h.invalid"}}, {"h.example"}, BRINDLE_PROGRAM);
    if (scene.isUp)
        scene.fails("no such host", "https://h.invalid/browse/ABC-1", "Network error: ");
}

} // namespace

void misbehavingNetwork(Findings &findings) {
    strangersAndNobody(findings);
    faultsOfTheGateway(findings);
}
