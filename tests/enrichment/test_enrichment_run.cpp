#include "clipboard/ClipboardRestorer.h"
#include "enrichment/Enrichment.h"
#include "fakes/FakePlatform.h"
#include "storage/Settings.h"

#include <QTest>

using namespace std::chrono_literals;

namespace {

const QString record = "507f1f77bcf86cd799439011";
const QString recordLink = "https://r.example/507f1f77bcf86cd799439011";
const QString issue = "https://h.example/browse/ABC-1";
const QString page = "https://h.example/wiki/spaces/ENG/pages/12/T";

const QStringList pasteOfARecord{"enrich: triggered (pasteAfter=true)",
                                 "enrich: detected ID 507f1f…",
                                 "enrich: clipboard updated for account 507f1f… (format=urlOnly)"};

/// A user with everything set up, who has copied `text`.
struct Scene : FakePlatform {
    explicit Scene(const QString &text = record) {
        Settings &settings = Settings::shared();
        settings.baseURL = "https://h.example";
        settings.email = "ann@h.example";
        settings.accountBaseURL = "https://r.example/";
        const QString service = "org.ostrowind.brindle/";
        secretStore->secrets = {{service + "jira-api-token", "t1"},
                                {service + "confluence-api-token", "t2"}};
        pasteboard->copyText(text);
        keyboard->onPaste = [this] {
            pasted = pasteboard->text(PasteboardType::String).value_or(QString());
            pasteboard->fetched.latest = dispatch->now();
        };
    }

    /// What the gateway answers; an empty body stands for status 404.
    void answer(const QByteArray &issueBody, const QByteArray &pageBody,
                const QByteArray &commentBody) {
        const QString gateway = "https://api.atlassian.com/ex/";
        const QString issuePath = gateway + "jira/c-1/rest/api/3/issue/ABC-1";
        const auto response = [](const QByteArray &body) {
            return UrlResponse{body.isEmpty() ? 404 : 200, body, {}};
        };
        Settings::shared().cloudId = "c-1";
        urlSession->answers = {
            {issuePath + "?fields=summary,issuetype,status", response(issueBody)},
            {issuePath + "/comment/77", response(commentBody)},
            {gateway + "confluence/c-1/wiki/api/v2/pages/12", response(pageBody)}};
    }

    QString clipboard() { return pasteboard->text(PasteboardType::String).value_or("(none)"); }

    QString pasted; ///< what the application in front got
};

} // namespace

class TestRun : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void recordIsPastedAndTheClipboardComesBack() {
        Scene scene;
        Enrichment::run(true);
        QCOMPARE(scene.clipboard(), recordLink);
        QVERIFY(scene.pasted.isEmpty());
        scene.dispatch->drain();
        QCOMPARE(scene.pasted, recordLink);
        QCOMPARE(scene.keyboard->events, QStringList({"settle", "paste 9"}));
        scene.dispatch->advance(499ms);
        QCOMPARE(scene.clipboard(), recordLink);
        scene.dispatch->advance(1ms);
        QCOMPARE(scene.clipboard(), record);
        QCOMPARE(scene.takeLog(), pasteOfARecord + QStringList({"enrich: paste succeeded",
                                                                "enrich: original clipboard "
                                                                "restored"}));
        QVERIFY(scene.notifications->shown.isEmpty());
        QCOMPARE(scene.secretStore->reads, 0);
    }

    void withoutRestoreTheLinkStays() {
        Scene scene;
        Settings::shared().restoreClipboardAfterPaste = false;
        Settings::shared().accountPasteFormat = PasteFormat::Markdown;
        Enrichment::run(true);
        scene.dispatch->advance(3s);
        QCOMPARE(scene.clipboard(), "[" + record + "](" + recordLink + ")");
        QVERIFY(!ClipboardRestorer::isDelivering());
        QVERIFY(scene.takeLog().contains(
            "enrich: clipboard updated for account 507f1f… (format=markdown)"));
    }

    void enrichOnlyWritesAndTells() {
        Scene scene;
        scene.keyboard->trusted = false;
        scene.keyboard->secureInput = true;
        Enrichment::run(false);
        scene.dispatch->advance(3s);
        QCOMPARE(scene.clipboard(), recordLink);
        QCOMPARE(scene.notifications->shown, QStringList("Brindle|Clipboard: " + recordLink));
        QVERIFY(scene.alerts->shown.isEmpty());
        QVERIFY(scene.keyboard->events.isEmpty());
    }

    void guards_data() {
        QTest::addColumn<QString>("copied");
        QTest::addColumn<QString>("missing"); // the setting or port that is not as it should be
        QTest::addColumn<QStringList>("log");
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("preferencesOpened");
        const auto row = [](const char *name, const QString &copied, const QString &missing,
                            const QStringList &log, const QString &message, int preferences = 0) {
            QTest::newRow(name) << copied << missing << log << message << preferences;
        };
        const QString jira = "enrich: detected Jira key ABC-1";
        const QString confluence = "enrich: detected Confluence page 12 in ENG";
        const QString untrusted = "enrich: Accessibility not granted — skipping clipboard mutation";
        const QString nothing =
            "enrich: no Jira, Confluence, or ID reference found on the clipboard";
        row("white space only", " \n\t ", {}, {"enrich: clipboard empty or not text"},
            "Clipboard is empty or not text.");
        row("no owner", record, "owner", {"enrich: clipboard empty or not text"},
            "Clipboard is empty or not text.");
        row("no reference", "hello", {}, {nothing},
            "Clipboard doesn't contain a Jira link, Confluence link, or linkable ID.");
        row("no reference and no site", "hello", "site", {nothing},
            "Set your Atlassian site URL in Preferences → Connection.");
        row("issue without e-mail", issue, "email", {jira, "enrich: no email configured"},
            "Email not set. Open Preferences.", 1);
        row("issue without token", issue, "token", {jira, "enrich: no Jira token configured"},
            "Jira API token not set. Open Preferences.", 1);
        row("issue with an empty token", issue, "empty token",
            {jira, "enrich: no Jira token configured"}, "Jira API token not set. Open Preferences.",
            1);
        row("issue without trust", issue, "trust", {jira, untrusted}, {});
        row("page without token", page, "token",
            {confluence, "enrich: no Confluence token configured"},
            "Confluence API token not set. Add one in Preferences → Connection.", 1);
        row("record without trust", record, "trust", {"enrich: detected ID 507f1f…", untrusted},
            {});
    }

    void guards() {
        QFETCH(QString, copied);
        QFETCH(QString, missing);
        QFETCH(QStringList, log);
        QFETCH(QString, message);
        Scene scene(copied);
        if (missing == "owner")
            scene.pasteboard->contents.reset();
        if (missing == "site")
            Settings::shared().baseURL = QString();
        if (missing == "email")
            Settings::shared().email = QString();
        if (missing == "token")
            scene.secretStore->secrets.clear();
        if (missing == "empty token")
            scene.secretStore->secrets["org.ostrowind.brindle/jira-api-token"] = " ";
        scene.keyboard->trusted = missing != "trust";
        const qint64 changes = scene.pasteboard->count;

        Enrichment::run(true);
        scene.dispatch->advance(3s);

        log.prepend("enrich: triggered (pasteAfter=true)");
        if (!message.isEmpty())
            log.append("notify: " + message);
        QCOMPARE(scene.takeLog(), log);
        QCOMPARE(scene.notifications->shown,
                 message.isEmpty() ? QStringList() : QStringList("Brindle|" + message));
        QTEST(scene.app.preferencesOpened, "preferencesOpened");
        QCOMPARE(scene.alerts->shown.size(), missing == "trust" ? 1 : 0);
        QCOMPARE(scene.pasteboard->count, changes);
        QVERIFY(scene.app.fetchingStates.isEmpty());
        QVERIFY(scene.keyboard->events.isEmpty());
        if (missing == "email") // the token of a user without an address is not looked at
            QCOMPARE(scene.secretStore->reads, 0);
    }

    void fetchedTitleIsPasted_data() {
        QTest::addColumn<QString>("copied");
        QTest::addColumn<QString>("pasted");
        QTest::addColumn<QString>("label");
        QTest::newRow("issue") << "http://H.example/browse/abc-1/?x=1"
                               << "[ABC-1 - BUG 🐛 - Crash](" + issue + ")"
                               << "ABC-1";
        QTest::newRow("comment") << issue + "?focusedCommentId=77"
                                 << "[ABC-1 *Ann* 🗨 - BUG 🐛 - Crash](" + issue +
                                        "?focusedCommentId=77)"
                                 << "ABC-1";
        QTest::newRow("page") << page << "[**Plan** ENG Page 12](" + page + ")"
                              << "confluence page 12";
        const QString blog = "https://h.example/wiki/spaces/ENG/blog/2026/01/02/12/t";
        QTest::newRow("blog post") << blog << "[**Plan** ENG Blog 12](" + blog + ")"
                                   << "confluence page 12";
    }

    void fetchedTitleIsPasted() {
        QFETCH(QString, copied);
        QFETCH(QString, pasted);
        QFETCH(QString, label);
        Scene scene(copied);
        scene.answer(R"({"fields":{"summary":"Crash","issuetype":{"name":"Bug"}}})",
                     R"({"title":"Plan"})", R"({"author":{"displayName":"Ann Lee"}})");
        Enrichment::run(true);
        QCOMPARE(scene.secretStore->reads, 0); // a locked keyring would hold the main thread up
        // Templates and format are those in force when the title arrives.
        Settings::shared().displayTemplate =
            "{key}<c> {commenter-name} {comment-emoji}</c> - {TYPE} {type-emoji} - {summary}";
        Settings::shared().commentEmoji = "🗨";
        Settings::shared().confluenceTemplate = "<b>{title}</b> {space} {type} {id}";
        Settings::shared().pasteFormat = PasteFormat::Markdown;
        scene.dispatch->advance(3s);
        QCOMPARE(scene.pasted, pasted);
        QCOMPARE(scene.clipboard(), copied);
        QCOMPARE(scene.app.fetchingStates, QList<bool>({true, false}));
        QVERIFY(scene.takeLog().contains("enrich: clipboard updated for " + label +
                                         " (format=markdown)"));
    }

    void failedFetchLeavesTheClipboardAlone_data() {
        QTest::addColumn<QString>("copied");
        QTest::addColumn<QString>("error");
        QTest::addColumn<QString>("log");
        QTest::newRow("issue") << issue << "Jira returned HTTP 404"
                               << "enrich: fetch failed (Jira returned HTTP 404)";
        QTest::newRow("page") << page << "Confluence returned HTTP 404"
                              << "enrich: confluence fetch failed (Confluence returned HTTP 404)";
    }

    void failedFetchLeavesTheClipboardAlone() {
        QFETCH(QString, copied);
        QFETCH(QString, error);
        QFETCH(QString, log);
        Scene scene(copied);
        scene.answer({}, {}, {});
        Enrichment::run(true);
        Enrichment::run(true); // while the keyring is asked
        scene.dispatch->advance(3s);
        QCOMPARE(scene.app.fetchingStates, QList<bool>({true, false}));
        QCOMPARE(scene.clipboard(), copied);
        QCOMPARE(scene.notifications->shown, QStringList("Brindle|" + error));
        QVERIFY(scene.keyboard->events.isEmpty());
        const QStringList lines = scene.takeLog();
        QCOMPARE(lines[3], "enrich: a fetch is already in flight — ignoring re-trigger");
        QVERIFY(lines.contains(log));
    }

    void secondPressDuringAFetchIsIgnored() {
        Scene scene(issue);
        Settings::shared().cloudId = "c-1"; // where nobody answers
        for (int press = 0; press < 2; ++press) {
            Enrichment::run(true);
            scene.dispatch->drain();
        }
        QCOMPARE(scene.takeLog().constLast(),
                 "enrich: a fetch is already in flight — ignoring re-trigger");
        QCOMPARE(scene.urlSession->requests.size(), 1);
    }

    void secondPressDuringAPasteIsIgnored() {
        Scene scene;
        Enrichment::run(true);
        scene.dispatch->advance(400ms);
        scene.takeLog();
        Enrichment::run(true);
        QCOMPARE(scene.takeLog(),
                 QStringList({"enrich: triggered (pasteAfter=true)",
                              "enrich: a paste is already in flight — ignoring re-trigger"}));
        scene.dispatch->advance(200ms);
        QCOMPARE(scene.clipboard(), record);
        Enrichment::run(true);
        QCOMPARE(scene.clipboard(), recordLink);
    }

    void secureInputLeavesTheLinkForTheUser_data() {
        QTest::addColumn<bool>("keyboardHeld");
        QTest::newRow("keyboard held by a prompt") << true;
        QTest::newRow("password field in focus") << false;
    }

    void secureInputLeavesTheLinkForTheUser() {
        QFETCH(bool, keyboardHeld);
        Scene scene;
        scene.keyboard->secureInput = keyboardHeld;
        scene.keyboard->passwordField = !keyboardHeld;
        Enrichment::run(true);
        scene.dispatch->advance(3s);
        QCOMPARE(scene.clipboard(), recordLink);
        QVERIFY(scene.keyboard->events.isEmpty());
        QVERIFY(!ClipboardRestorer::isDelivering());
        const QString message = "Couldn't paste: secure keyboard entry is active (a password field "
                                "or password manager). The enriched link is on your clipboard — "
                                "paste it with ⌘V.";
        QCOMPARE(scene.takeLog(),
                 pasteOfARecord + QStringList({"enrich: secure keyboard entry active — leaving "
                                               "enriched link for manual paste",
                                               "notify: " + message}));
    }

    void failedPaste_data() {
        QTest::addColumn<QByteArray>("reason");
        QTest::addColumn<bool>("permission");
        QTest::newRow("keystrokes forbidden")
            << QByteArray("X is Not Allowed to send Keystrokes.") << true;
        QTest::newRow("number 1002") << QByteArray("execution error (1002)") << true;
        QTest::newRow("not authorized") << QByteArray("Not authorized to send events") << true;
        QTest::newRow("anything else") << QByteArray("no display") << false;
    }

    void failedPaste() {
        QFETCH(QByteArray, reason);
        QFETCH(bool, permission);
        Scene scene;
        scene.keyboard->canPost = false;
        scene.childProcess->result = {{}, 1, reason};
        scene.alerts->answer = 0;
        scene.workspace->missing = "no settings page";
        Enrichment::run(true);
        scene.dispatch->advance(3s);
        const QString error = QString::fromUtf8(reason);
        QCOMPARE(scene.clipboard(), recordLink);
        QVERIFY(!ClipboardRestorer::isDelivering());
        QCOMPARE(scene.childProcess->runs, QStringList("/usr/bin/keypresser ctrl+v"));
        QStringList expected = pasteOfARecord;
        expected.append("enrich: paste failed (" + error + ")");
        if (permission) {
            QCOMPARE(scene.alerts->shown.size(), 1);
            const Alert alert = scene.alerts->shown.constFirst();
            QCOMPARE(alert.message, "Brindle needs Accessibility permission");
            QCOMPARE(alert.informativeText,
                     "The clipboard is updated, but macOS blocked the paste because Accessibility "
                     "isn't enabled for this build of Brindle.\n\nClick the button below, then "
                     "turn the switch on for Brindle (add it manually with the + button if it "
                     "isn't listed yet).\n\nDetails: " +
                         error);
            QCOMPARE(alert.buttons, QStringList({"Open Accessibility Settings", "Dismiss"}));
            QCOMPARE(scene.workspace->opened, 1);
            expected.append("enrich: can't open the accessibility settings: no settings page");
        } else {
            const QString message = "Clipboard updated but paste failed: " + error + ".";
            QCOMPARE(scene.notifications->shown, QStringList("Brindle|" + message));
            expected.append("notify: " + message);
        }
        QCOMPARE(scene.takeLog(), expected);
    }
};

QTEST_GUILESS_MAIN(TestRun)
#include "test_enrichment_run.moc"
