#include "e2e/Site.h"
#include "stage/StatusArea.h"

#include <QDBusConnectionInterface>

class TestE2eFetch : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void titlesArePasted() {
        const QString comment = issue + "?focusedCommentId=77";
        struct Case {
            QString format, copied, text, html;
            QStringList targets;
        };
        const QList<Case> cases{
            // The tag in the title is a style like any other in a template.
            {"richLink",
             issue,
             "ABC-1 - BUG - é — 🐞  & (" + issue + ")",
             "<a href=\"" + issue + "\">ABC-1 - BUG - é — 🐞 <b> &amp;</a>",
             {issueTarget}},
            {"plainText",
             comment,
             "ABC-1 - BUG - é — 🐞  & Ann: “Looks good” (" + comment + ")",
             {},
             {issueTarget, commentTarget}},
            {"plainText", page, "Plan — ENG (" + page + ")", {}, {pageTarget}},
        };
        for (const auto &[format, copied, text, html, targets] : cases) {
            Site scene({{"pasteFormat", format},
                        {"displayTemplate",
                         "{key} - {TYPE} - {summary}<c> {commenter-name}: {commenttext}</c>"}});
            QVERIFY(scene.isReady());
            const ClipboardOwner owner(scene.desktop, scene.copied(copied));
            scene.press();
            const auto paste = scene.target->waitForPaste();
            QVERIFY(paste);
            QCOMPARE(paste->text.simplified(), text.simplified());
            QCOMPARE(paste->html, html);
            QVERIFY(scene.clipboardBecomes(copied));

            QStringList requests;
            for (const GatewayRequest &request : scene.gateway.requests) {
                requests.append(request.target);
                const bool isSite = request.target == "/_edge/tenant_info";
                QCOMPARE(request.host, isSite ? "h.example" : "api.atlassian.com");
                const QByteArray token =
                    request.target == pageTarget ? "confluence-secret" : "jira-secret";
                QCOMPARE(request.headers.value("authorization"),
                         isSite ? QByteArray() : "Basic " + ("ann@h.example:" + token).toBase64());
            }
            QCOMPARE(requests, QStringList("/_edge/tenant_info") + targets);
            QVERIFY(scene.gateway.connections <= 2); // one to each host
            QVERIFY(scene.shown.notifications().isEmpty());
        }
    }

    void iconIsFaintDuringAFetch() {
        Site scene;
        QVERIFY(scene.isReady());
        const StatusArea area(scene.desktop.bus());
        QVERIFY(waitFor([&] { return area.items().size() == 1; }));
        const QImage usual = area.picture();
        QVERIFY(!usual.isNull());
        scene.gateway.replies[issueTarget].delay = 2000;
        const ClipboardOwner owner(scene.desktop, scene.copied(issue));
        scene.press();
        QVERIFY(waitFor([&] { return area.picture() != usual; }));
        QCOMPARE(scene.target->pasteCount(), 0);
        QVERIFY(scene.target->waitForPaste());
        QVERIFY(waitFor([&] { return area.picture() == usual; }));
    }

    void failuresAreToldAndChangeNothing() {
        Site scene;
        QVERIFY(scene.isReady());
        const ClipboardOwner owner(scene.desktop, scene.copied(issue));
        using Manner = GatewayReply::Manner;
        const QList<std::tuple<QString, GatewayReply, QString>> cases{
            {"/_edge/tenant_info",
             {.status = 404},
             "Couldn't read cloud ID from h.example (HTTP 404)"},
            {issueTarget, {.status = 404, .body = "{}"}, "Jira returned HTTP 404"},
            {issueTarget, {.manner = Manner::Close}, "Network error: "},
            {issueTarget, {.manner = Manner::Silence}, "Network error: The request timed out."},
        };
        for (qsizetype i = 0; i < cases.size(); ++i) {
            const auto &[target, reply, told] = cases[i];
            const auto usual = scene.gateway.replies;
            scene.gateway.replies[target] = reply;
            scene.press();
            QVERIFY(scene.shown.waitForAccepted(i + 1, 30000));
            const QString body = scene.shown.notifications()[i].body;
            QVERIFY2(body.startsWith(told), qPrintable(body));
            scene.gateway.replies = usual;
        }
        QVERIFY(owner.ownsClipboard());
        QCOMPARE(scene.target->pasteCount(), 0);
        QVERIFY(scene.brindle->isUp());
    }

    void keyringThatDoesNotAnswerHoldsUpTheFetchAlone() {
        Site scene;
        QVERIFY(scene.isReady());
        const auto keyring = static_cast<pid_t>(
            scene.desktop.bus().interface()->servicePid("org.freedesktop.secrets").value());
        {
            const ClipboardOwner owner(scene.desktop, scene.copied(issue));
            QCOMPARE(kill(keyring, SIGSTOP), 0);
            QVERIFY(scene.brindle->activate("enrich"));
            QVERIFY(scene.brindle->activate("none"));
            QVERIFY(owner.ownsClipboard());
            QCOMPARE(kill(keyring, SIGCONT), 0);
            QVERIFY(scene.target->waitForPaste());
        }
        const qsizetype requests = scene.gateway.requests.size();
        const ClipboardOwner owner(scene.desktop, scene.copied(issue));
        QVERIFY(lockKeyring(scene.desktop)); // and nobody unlocks it
        QTRY_VERIFY_WITH_TIMEOUT((scene.press(), scene.shown.waitForAccepted(1, 3000)),
                                 15000); // the paste ends first
        QVERIFY(
            scene.shown.waitForAccepted(2)); // the prompt can't be shown here, which counts as no
        QStringList told;
        for (const auto &notification : scene.shown.notifications())
            told.append(notification.body);
        // Of the first press; the second comes after its end, if at all.
        QCOMPARE(told.first(2), QStringList({"Keychain is waiting for its password.",
                                             "Jira API token not set. Open Preferences."}));
        QCOMPARE(scene.gateway.requests.size(), requests);
        QVERIFY(owner.ownsClipboard());
    }
};

QTEST_GUILESS_MAIN(TestE2eFetch)
#include "test_e2e_fetch.moc"
