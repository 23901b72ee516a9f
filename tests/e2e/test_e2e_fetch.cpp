#include "stage/Actors.h"
#include "stage/BrindleProcess.h"
#include "stage/ClipboardReader.h"
#include "stage/Keyring.h"
#include "stage/LoopbackGateway.h"
#include "stage/VirtualDesktop.h"
#include "stage/VirtualKeyboard.h"
#include "support/NotificationLog.h"

#include <QDBusConnectionInterface>
#include <QTest>

#include <csignal>
#include <linux/input-event-codes.h>

namespace {

const QString issue = "https://h.example/browse/ABC-1";
const QString page = "https://h.example/wiki/spaces/ENG/pages/12/T";

const QString issueTarget = "/ex/jira/c-1/rest/api/3/issue/ABC-1?fields=summary,issuetype,status";
const QString commentTarget = "/ex/jira/c-1/rest/api/3/issue/ABC-1/comment/77";
const QString pageTarget = "/ex/confluence/c-1/wiki/api/v2/pages/12";

/// A user with a site, an address and tokens in the keyring, and Brindle led to the gateway.
struct Scene {
    explicit Scene(QMap<QString, QString> settings)
        : desktop({.notifications = true, .keyring = true}),
          keys(desktop.keyboardDisplay()),
          shown(desktop.busAddress()) {
        tokensStored = storeToken(desktop, "jira-api-token", "jira-secret") &&
                       storeToken(desktop, "confluence-api-token", "confluence-secret");
        gateway.replies = {
            {"/_edge/tenant_info", {.body = R"({"cloudId":"c-1"})"}},
            {issueTarget,
             {.body = R"({"fields":{"summary":"é — 🐞 <b> &","issuetype":{"name":"Bug"},)"
                      R"("status":{"name":"Done"}}})"}},
            {commentTarget,
             {.body = R"({"author":{"displayName":"Ann Lee"},"body":{"content":[)"
                      R"({"type":"text","text":"Looks good"}]}})"}},
            {pageTarget, {.body = R"({"title":"Plan"})"}}};
        settings.insert({{"jiraBaseURL", "https://h.example"}, {"jiraEmail", "ann@h.example"}});
        brindle = std::make_unique<BrindleProcess>(
            desktop, settings, BRINDLE_ON_STAGE_PROGRAM,
            QStringList{QString::number(gateway.port()), gateway.certificate()});
        target = std::make_unique<PasteTarget>(desktop);
    }

    bool isUp() {
        return desktop.problem().isEmpty() && gateway.problem().isEmpty() && tokensStored &&
               brindle->isUp() && waitFor([this] { return target->hasFocus(); });
    }

    void press() {
        keys.chord(
            {keyCode(KEY_LEFTCTRL), keyCode(KEY_LEFTALT), keyCode(KEY_LEFTMETA), keyCode(KEY_V)});
    }

    VirtualDesktop desktop;
    VirtualKeyboard keys;
    NotificationLog shown;
    LoopbackGateway gateway;
    bool tokensStored = false;
    std::unique_ptr<BrindleProcess> brindle;
    std::unique_ptr<PasteTarget> target;
};

QList<OwnedFlavour> copied(const QString &text) {
    return {{"UTF8_STRING", text.toUtf8()}};
}

} // namespace

class TestE2eFetch : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void titlesArePasted_data() {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("copied");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("html");
        QTest::addColumn<QStringList>("requests");
        const QString title = "ABC-1 - BUG - é — 🐞 <b> &";
        const QStringList issueOnly{"/_edge/tenant_info", issueTarget};
        // The tag in the title is a style like any other in a template.
        const QString rich = "ABC-1 - BUG - é — 🐞 &";
        QTest::newRow("rich link")
            << "richLink" << issue << rich + " (" + issue + ")"
            << "<a href=\"" + issue + "\">ABC-1 - BUG - é — 🐞 <b> &amp;</a>" << issueOnly;
        QTest::newRow("Markdown") << "markdown" << issue
                                  << "[ABC-1 - BUG - é — 🐞 ** &](" + issue + ")"
                                  << "" << issueOnly;
        QTest::newRow("plain text") << "plainText" << issue << rich + " (" + issue + ")"
                                    << "" << issueOnly;
        QTest::newRow("comment") << "plainText" << issue + "?focusedCommentId=77"
                                 << "ABC-1 - BUG - é — 🐞 & Ann: “Looks good” (" + issue +
                                        "?focusedCommentId=77)"
                                 << "" << issueOnly + QStringList(commentTarget);
        QTest::newRow("page") << "plainText" << page << "Plan — ENG (" + page + ")"
                              << "" << QStringList{"/_edge/tenant_info", pageTarget};
    }

    void titlesArePasted() {
        QFETCH(QString, format);
        QFETCH(QString, copied);
        QFETCH(QString, html);
        Scene scene({{"pasteFormat", format},
                     {"displayTemplate",
                      "{key} - {TYPE} - {summary}<c> {commenter-name}: {commenttext}</c>"}});
        QVERIFY(scene.isUp());
        const ClipboardOwner owner(scene.desktop, ::copied(copied));
        scene.press();
        const auto paste = scene.target->waitForPaste();
        QVERIFY(paste);
        QString text = paste->text;
        QTEST(text.replace("  ", " "), "text");
        QCOMPARE(paste->html, html);
        QVERIFY(waitFor([&] {
            return ClipboardReader(scene.desktop.display()).data("UTF8_STRING") == copied.toUtf8();
        }));

        QStringList requests;
        for (const GatewayRequest &request : scene.gateway.requests) {
            requests.append(request.target);
            const bool isSite = request.host == "h.example";
            QCOMPARE(isSite, request.target == "/_edge/tenant_info");
            QVERIFY(isSite || request.host == "api.atlassian.com");
            const QByteArray token =
                request.target == pageTarget ? "confluence-secret" : "jira-secret";
            QCOMPARE(request.headers.value("authorization"),
                     isSite ? QByteArray() : "Basic " + ("ann@h.example:" + token).toBase64());
        }
        QTEST(requests, "requests");
        // One connection to each host.
        QVERIFY2(scene.gateway.connections <= 2,
                 qPrintable(QString::number(scene.gateway.connections)));
        QVERIFY(scene.shown.notifications().isEmpty());
    }

    void failuresAreToldAndChangeNothing() {
        Scene scene({});
        QVERIFY(scene.isUp());
        const ClipboardOwner owner(scene.desktop, copied(issue));
        using Manner = GatewayReply::Manner;
        const QList<std::pair<GatewayReply, QString>> cases{
            {{.status = 404, .body = "{}"}, "Jira returned HTTP 404"},
            {{.manner = Manner::Close}, "Network error: "},
            {{.manner = Manner::Silence}, "Network error: The request timed out."},
        };
        for (qsizetype i = 0; i < cases.size(); ++i) {
            scene.gateway.replies[issueTarget] = cases[i].first;
            scene.press();
            QVERIFY(scene.shown.waitForAccepted(i + 1, 30000));
            const QString body = scene.shown.notifications()[i].body;
            QVERIFY2(body.startsWith(cases[i].second), qPrintable(body));
        }
        QVERIFY(owner.ownsClipboard());
        QCOMPARE(scene.target->pasteCount(), 0);
        QVERIFY(scene.brindle->isUp());
    }

    void keyringThatDoesNotAnswerHoldsUpTheFetchAlone() {
        Scene scene({});
        QVERIFY(scene.isUp());
        const ClipboardOwner owner(scene.desktop, copied(issue));
        const auto keyring = static_cast<pid_t>(
            scene.desktop.bus().interface()->servicePid("org.freedesktop.secrets").value());
        QCOMPARE(kill(keyring, SIGSTOP), 0);
        QVERIFY(scene.brindle->activate("enrich"));
        QVERIFY(scene.brindle->activate("none"));
        QVERIFY(owner.ownsClipboard());
        QCOMPARE(kill(keyring, SIGCONT), 0);
        QVERIFY(scene.target->waitForPaste());
    }

    void lockedKeyringThatNobodyUnlocksHoldsNoToken() {
        Scene scene({});
        QVERIFY(scene.isUp());
        const ClipboardOwner owner(scene.desktop, copied(issue));
        QVERIFY(lockKeyring(scene.desktop));
        scene.press();
        QVERIFY(scene.shown.waitForAccepted(1));
        QCOMPARE(scene.shown.notifications()[0].body, "Jira API token not set. Open Preferences.");
        QVERIFY(scene.gateway.requests.isEmpty());
    }

    void siteThatIsNoneIsTold() {
        Scene scene({});
        QVERIFY(scene.isUp());
        scene.gateway.replies.remove("/_edge/tenant_info");
        const ClipboardOwner owner(scene.desktop, copied(page));
        scene.press();
        QVERIFY(scene.shown.waitForAccepted(1));
        QCOMPARE(scene.shown.notifications()[0].body,
                 "Couldn't read cloud ID from h.example (HTTP 404)");
        QCOMPARE(scene.gateway.requests.size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestE2eFetch)
#include "test_e2e_fetch.moc"
