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

/// A user with everything set up, who has copied `text`.
struct Scene : FakePlatform {
    explicit Scene(const QString &text = record) {
        Settings &settings = Settings::shared();
        settings.baseURL = "https://h.example";
        settings.email = "ann@h.example";
        settings.cloudId = "c-1";
        settings.accountBaseURL = "https://r.example/";
        secretStore->secrets = {{"org.ostrowind.brindle/jira-api-token", "t1"},
                                {"org.ostrowind.brindle/confluence-api-token", "t2"}};
        pasteboard->copyText(text);
        keyboard->onPaste = [this] {
            pasted = clipboard();
            pasteboard->fetched.latest = dispatch->now();
        };
    }

    /// What the gateway answers to any question.
    void answer(int status, const QByteArray &body) {
        const QString gateway = "https://api.atlassian.com/ex/";
        for (const char *path :
             {"jira/c-1/rest/api/3/issue/ABC-1?fields=summary,issuetype,status",
              "jira/c-1/rest/api/3/issue/ABC-1/comment/77", "confluence/c-1/wiki/api/v2/pages/12"})
            urlSession->answers.insert(gateway + path, {status, body, {}});
    }

    void run(bool pasteAfter = true) {
        Enrichment::run(pasteAfter);
        dispatch->advance(3s);
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
        Enrichment::run(true);
        QCOMPARE(scene.takeLog(),
                 QStringList({"enrich: triggered (pasteAfter=true)", "enrich: detected ID 507f1f…",
                              "enrich: clipboard updated for account 507f1f… (format=urlOnly)",
                              "enrich: paste succeeded", "enrich: triggered (pasteAfter=true)",
                              "enrich: a paste is already in flight — ignoring re-trigger"}));
        scene.dispatch->advance(1ms);
        QCOMPARE(scene.clipboard(), record);
        QVERIFY(scene.notifications->shown.isEmpty());
        QCOMPARE(scene.secretStore->reads, 0);
        Enrichment::run(true);
        QCOMPARE(scene.clipboard(), recordLink);
    }

    void linkStays() {
        // Pasted with nothing to be given back, or only written, which needs no permission.
        for (const bool pasteAfter : {true, false}) {
            Scene scene;
            Settings::shared().restoreClipboardAfterPaste = !pasteAfter;
            scene.keyboard->trusted = pasteAfter;
            scene.keyboard->secureInput = !pasteAfter;
            scene.run(pasteAfter);
            QCOMPARE(scene.clipboard(), recordLink);
            QCOMPARE(scene.pasted, pasteAfter ? recordLink : QString());
            QCOMPARE(scene.notifications->shown.value(0),
                     pasteAfter ? QString() : "Brindle|Clipboard: " + recordLink);
            QVERIFY(scene.alerts->shown.isEmpty());
            QVERIFY(!ClipboardRestorer::isDelivering());
        }
    }

    void guards() {
        // What is copied, the setting or port that is not as it should be, and what is told.
        const QList<std::tuple<QString, QString, QString>> cases{
            {" \n\t ", "text", "Clipboard is empty or not text."},
            {record, "owner", "Clipboard is empty or not text."},
            {"hello", "reference",
             "Clipboard doesn't contain a Jira link, Confluence link, or linkable ID."},
            {"hello", "site", "Set your Atlassian site URL in Preferences → Connection."},
            {issue, "email", "Email not set. Open Preferences."},
            {issue, "token", "Jira API token not set. Open Preferences."},
            {page, "token", "Confluence API token not set. Add one in Preferences → Connection."},
            {issue, "trust", {}},
            {record, "trust", {}},
        };
        for (const auto &[copied, missing, message] : cases) {
            Scene scene(copied);
            if (missing == "owner")
                scene.pasteboard->contents.reset();
            if (missing == "site")
                Settings::shared().baseURL = QString();
            if (missing == "email")
                Settings::shared().email = QString();
            if (missing == "token")
                scene.secretStore->secrets = {{"org.ostrowind.brindle/jira-api-token", " "}};
            scene.keyboard->trusted = missing != "trust";
            const qint64 changes = scene.pasteboard->count;

            scene.run();

            QCOMPARE(scene.notifications->shown.join('\n'),
                     message.isEmpty() ? QString() : "Brindle|" + message);
            QCOMPARE(scene.app.preferencesOpened, missing == "email" || missing == "token" ? 1 : 0);
            QCOMPARE(scene.alerts->shown.size(), missing == "trust" ? 1 : 0);
            QCOMPARE(scene.pasteboard->count, changes);
            QVERIFY(scene.app.fetchingStates.isEmpty());
            QVERIFY(scene.keyboard->events.isEmpty());
            if (missing == "email") // the token of a user without an address is not looked at
                QCOMPARE(scene.secretStore->reads, 0);
        }
    }

    void fetchedTitleIsPastedAndAFailureOnlyTold() {
        const QString comment = issue + "?focusedCommentId=77";
        const QString blog = "https://h.example/wiki/spaces/ENG/blog/2026/01/02/12/t";
        const QList<std::pair<QString, QString>> cases{
            {"http://H.example/browse/abc-1/?x=1", "[ABC-1 - BUG 🐛 - Crash](" + issue + ")"},
            {comment, "[ABC-1 *Ann* 🗨 - BUG 🐛 - Crash](" + comment + ")"},
            {blog, "[**Plan** ENG Blog 12](" + blog + ")"},
        };
        for (const auto &[copied, link] : cases) {
            Scene scene(copied);
            Enrichment::run(true);
            QCOMPARE(scene.secretStore->reads, 0); // a locked keyring would hold the thread up
            // Templates and format are those in force when the title arrives.
            Settings::shared().displayTemplate =
                "{key}<c> {commenter-name} {comment-emoji}</c> - {TYPE} {type-emoji} - {summary}";
            Settings::shared().commentEmoji = "🗨";
            Settings::shared().confluenceTemplate = "<b>{title}</b> {space} {type} {id}";
            Settings::shared().pasteFormat = PasteFormat::Markdown;
            scene.answer(200, R"({"fields":{"summary":"Crash","issuetype":{"name":"Bug"}},)"
                              R"("title":"Plan","author":{"displayName":"Ann Lee"}})");
            scene.dispatch->advance(3s);
            QCOMPARE(scene.pasted, link);
            QCOMPARE(scene.clipboard(), copied);

            scene.answer(404, {});
            scene.pasted.clear();
            const qint64 changes = scene.pasteboard->count;
            scene.run();
            QVERIFY(scene.notifications->shown.value(0).endsWith(" returned HTTP 404"));
            QCOMPARE(scene.pasteboard->count, changes);
            QCOMPARE(scene.pasted, QString());
            QCOMPARE(scene.app.fetchingStates, QList<bool>({true, false, true, false}));
        }
    }

    void pressesDuringAFetchAreIgnored() {
        Scene scene(issue);
        Enrichment::run(true);
        Enrichment::run(true); // while the keyring is asked
        QCOMPARE(scene.takeLog().constLast(),
                 "enrich: a fetch is already in flight — ignoring re-trigger");
        scene.dispatch->drain();
        Enrichment::run(true); // while nobody answers
        scene.dispatch->drain();
        QCOMPARE(scene.secretStore->reads, 1);
        QCOMPARE(scene.urlSession->requests.size(), 1);
    }

    void failedPasteLeavesTheLink() {
        const QList<std::pair<QString, bool>> cases{
            {"X is Not Allowed to send Keystrokes.", true},
            {"execution error (1002)", true},
            {"no display", false},
        };
        for (const auto &[reason, permission] : cases) {
            Scene scene;
            scene.keyboard->canPost = false;
            scene.childProcess->result = {{}, 1, reason.toUtf8()};
            scene.run();
            QCOMPARE(scene.clipboard(), recordLink);
            QVERIFY(!ClipboardRestorer::isDelivering());
            QCOMPARE(scene.alerts->shown.size(), permission ? 1 : 0);
            QCOMPARE(scene.notifications->shown.size(), permission ? 0 : 1);
        }
    }
};

QTEST_GUILESS_MAIN(TestRun)
#include "test_enrichment_run.moc"
