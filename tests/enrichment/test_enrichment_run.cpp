#include "clipboard/ClipboardRestorer.h"
#include "desktop/CurrentRun.h"
#include "enrichment/Enrichment.h"
#include "fakes/FakePlatform.h"
#include "storage/Settings.h"

#include <QTest>

using namespace Qt::StringLiterals;
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
        pasteKeys->onPaste = [this] {
            pasted = clipboard();
            pasteboard->beUsed({true, dispatch->now(), false});
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
        scene.dispatch->advance(49ms);
        QCOMPARE(scene.clipboard(), recordLink);
        QVERIFY(scene.pasted.isEmpty());
        scene.dispatch->advance(1ms);
        QCOMPARE(scene.pasted, recordLink);
        QCOMPARE(scene.pasteKeys->events, QStringList({"settle", "paste 9"}));
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
        QCOMPARE(scene.takeLog(), QStringList("enrich: original clipboard restored"));
        QCOMPARE(scene.pasteboard->reads, 1);
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
            if (!pasteAfter)
                scene.pasteKeys->granted.state = PasteAccess::State::NeedsConsent;
            scene.secureInput->answer =
                pasteAfter ? SecureInput::Answer::Unknown : SecureInput::Answer::Yes;
            scene.run(pasteAfter);
            QCOMPARE(scene.clipboard(), recordLink);
            QCOMPARE(scene.pasted, pasteAfter ? recordLink : QString());
            QCOMPARE(scene.pasteKeys->prepared, pasteAfter ? 1 : 0);
            QCOMPARE(scene.notifications->shown.value(0),
                     pasteAfter ? QString() : "Brindle|Clipboard: " + recordLink);
            QVERIFY(scene.alerts->shown.isEmpty());
            QVERIFY(!ClipboardRestorer::isDelivering());
            QVERIFY(!scene.takeLog().contains("enrich: original clipboard restored"));
        }
    }

    void guards() {
        const QString none = "enrich: no Jira, Confluence, or ID reference found on the clipboard";
        const QString access = "enrich: Accessibility not granted — skipping clipboard mutation";
        struct Case {
            const char *name;
            QString copied;
            std::function<void(Scene &)> spoil; ///< what is not as it should be
            QString message;
            QString logged; ///< the line before the message's own
        };
        const auto nothing = [](Scene &) {};
        const auto noOwner = [](Scene &scene) { scene.pasteboard->contents.reset(); };
        const auto noSite = [](Scene &) { Settings::shared().baseURL = QString(); };
        const auto noEmail = [](Scene &) { Settings::shared().email = QString(); };
        const auto noToken = [](Scene &scene) {
            // Without a token nobody is asked for a permission.
            scene.pasteKeys->granted.state = PasteAccess::State::NeedsConsent;
            scene.secretStore->secrets = {{"org.ostrowind.brindle/jira-api-token", " "}};
        };
        const auto noKeyring = [](Scene &scene) {
            scene.secretStore->failure = SecretStore::Outcome::Unavailable;
        };
        const auto noTrust = [](Scene &scene) {
            scene.pasteKeys->granted.state = PasteAccess::State::NeedsConsent;
        };
        const auto noClipboard = [](Scene &scene) { scene.pasteboard->unavailable = "no server"; };
        const QList<Case> cases{
            {"blank", " \n\t ", nothing, "Clipboard is empty or not text.",
             "enrich: clipboard empty or not text"},
            {"no owner", record, noOwner, "Clipboard is empty or not text.",
             "enrich: clipboard empty or not text"},
            {"no reference", "hello", nothing,
             "Clipboard doesn't contain a Jira link, Confluence link, or linkable ID.", none},
            {"no site", "hello", noSite, "Set your Atlassian site URL in Preferences → Connection.",
             none},
            {"no email", issue, noEmail, "Email not set. Open Preferences.",
             "enrich: no email configured"},
            {"no Jira token", issue, noToken, "Jira API token not set. Open Preferences.",
             "enrich: no Jira token configured"},
            {"no Confluence token", page, noToken,
             "Confluence API token not set. Add one in Preferences → Connection.",
             "enrich: no Confluence token configured"},
            {"no keyring", issue, noKeyring,
             "No keyring keeps API tokens here. Install gnome-keyring, KWallet or KeePassXC, "
             "switch "
             "its Secret Service on and log in again.",
             "enrich: no Jira token configured"},
            {"issue, not allowed", issue, noTrust, {}, access},
            {"record, not allowed", record, noTrust, {}, access},
            {"no clipboard", record, noClipboard, "Brindle can't reach the clipboard: no server.",
             "enrich: there is no clipboard (no server)"},
        };
        for (const auto &[name, copied, spoil, message, logged] : cases) {
            Scene scene(copied);
            spoil(scene);
            const qint64 changes = scene.pasteboard->count;

            scene.run();

            const QString row = name;
            QCOMPARE(row + scene.notifications->shown.join('\n'),
                     row + (message.isEmpty() ? QString() : "Brindle|" + message));
            const QStringList log = scene.takeLog();
            const qsizetype place = log.size() - (message.isEmpty() ? 1 : 2);
            QCOMPARE(row + log.value(place), row + logged);
            const bool opens =
                row.contains("email") || row.contains("token") || row.contains("keyring");
            QCOMPARE(row + QString::number(scene.app.preferencesOpened),
                     row + QString::number(opens ? 1 : 0));
            QCOMPARE(scene.alerts->shown.size(), message.isEmpty() ? 1 : 0);
            QCOMPARE(scene.pasteboard->count, changes);
            QVERIFY2(scene.app.fetchingStates.isEmpty(), name);
            QVERIFY2(scene.pasteKeys->events.isEmpty(), name);
            if (row == "no email") // the token of a user without an address is not looked at
                QCOMPARE(scene.secretStore->reads, 0);
            QCOMPARE(CurrentRun::phase(), RunPhase::Idle);
        }
    }

    void accessibilityAlert() {
        using State = PasteAccess::State;
        struct Case {
            const char *name;
            int button;
            State answered; ///< by the user, where the desktop asks
            QString logged;
        };
        for (const auto &[name, button, answered, logged] :
             {Case{"granted", 0, State::Ready, "access: permission to paste given"},
              Case{"declined", 0, State::NeedsConsent, "access: no permission to paste (not now)"},
              Case{"dismissed", 1, State::Ready,
                   "enrich: Accessibility not granted — skipping clipboard mutation"}}) {
            Scene scene;
            scene.pasteKeys->granted = {State::NeedsConsent, {}, "Ask"};
            scene.pasteKeys->answered = {answered, "not now"};
            scene.alerts->answer = button;
            scene.run();
            const Alert alert = scene.alerts->shown.value(0);
            QCOMPARE(alert.style, Alert::Style::Warning);
            QCOMPARE(alert.message, "Brindle needs Accessibility permission");
            QCOMPARE(
                alert.informativeText,
                "The clipboard is updated, but macOS blocked the paste because Accessibility "
                "isn't enabled for this build of Brindle.\n\nClick the button below, then turn "
                "the switch on for Brindle (add it manually with the + button if it isn't "
                "listed yet).\n\nDetails: Brindle isn't in the Accessibility allowlist yet.");
            QCOMPARE(alert.buttons, QStringList({"Open Accessibility Settings", "Dismiss"}));
            QVERIFY2(scene.pasteKeys->requests == (button == 0 ? 1 : 0), name);
            QVERIFY2(scene.workspace->opened == 0, name);
            const QString last = scene.takeLog().constLast();
            QVERIFY2(last == logged, qPrintable(name + (": " + last)));
        }
    }

    /// What the button of the alert leads to when a paste was refused.
    void refusedPasteLeadsToTheQuestionElseToTheSettings() {
        struct Case {
            QString missing; ///< of the settings page
            QString offer;   ///< of the desktop
            QString logged;
        };
        const QString tried = "enrich: paste failed (not authorized)";
        for (const auto &[missing, offer, logged] :
             {Case{{}, {}, tried},
              Case{"no page", {}, "enrich: can't open the accessibility settings: no page"},
              Case{{}, "Ask", "access: permission to paste given"}}) {
            Scene scene;
            scene.pasteKeys->canPost = false;
            if (offer.isEmpty()) { // the program that presses instead says so, else the desktop
                scene.childProcess->result = {{}, 1, "not authorized"};
            } else {
                scene.pasteKeys->program.reset();
                scene.pasteKeys->granted = {PasteAccess::State::Ready, "not authorized", offer};
            }
            scene.alerts->answer = 0;
            scene.workspace->missing = missing;
            scene.run();
            QCOMPARE(scene.alerts->shown.size(), 1);
            QCOMPARE(scene.workspace->opened, offer.isEmpty() ? 1 : 0);
            QCOMPARE(scene.pasteKeys->requests, offer.isEmpty() ? 0 : 1);
            const QStringList lines = scene.takeLog();
            QVERIFY(lines.contains(tried));
            QCOMPARE(lines.constLast(), logged);
        }
    }

    void withoutKeysTheLinkIsCopiedAndThatIsSaidOnce() {
        Scene scene;
        scene.pasteKeys->granted = {PasteAccess::State::Impossible, "no keys today"};
        for (int times = 0; times < 2; ++times) {
            scene.pasteboard->copyText(record);
            scene.run();
            QCOMPARE(scene.clipboard(), recordLink);
        }
        QCOMPARE(
            scene.notifications->shown,
            QStringList({"Brindle|Brindle can't paste here: no keys today. Links are copied for "
                         "you to paste.",
                         "Brindle|Clipboard: " + recordLink, "Brindle|Clipboard: " + recordLink}));
        QVERIFY(scene.alerts->shown.isEmpty());
        QVERIFY(scene.pasteKeys->events.isEmpty());
    }

    void secureInputLeavesTheLink() {
        Scene scene;
        scene.secureInput->answer = SecureInput::Answer::Yes;
        scene.run();
        QCOMPARE(scene.clipboard(), recordLink);
        QCOMPARE(
            scene.notifications->shown,
            QStringList(u"Brindle|Couldn't paste: secure keyboard entry is active (a password "
                        u"field or password manager). The enriched link is on your clipboard — "
                        u"paste it with ⌘V."_s));
        QVERIFY(scene.takeLog().contains("enrich: secure keyboard entry active — leaving enriched "
                                         "link for manual paste"));
        QVERIFY(scene.pasteKeys->events.isEmpty());
        QVERIFY(!ClipboardRestorer::isDelivering());
    }

    void copyMadeMeanwhileIsWhatComesBack() {
        Scene scene(issue);
        scene.pasteboard->beforeWrite = [&] { scene.pasteboard->copyText("user's newer"); };
        Enrichment::run(true);
        scene.answer(200, R"({"fields":{"summary":"Crash"}})");
        scene.dispatch->advance(3s);
        QVERIFY(scene.pasted.contains("ABC-1"));
        QCOMPARE(scene.clipboard(), "user's newer");
        QCOMPARE(scene.pasteboard->reads, 2);
    }

    void nothingBeginsAfterTheEnd() {
        Scene scene;
        CurrentRun::enter(RunPhase::Ended);
        scene.run();
        QCOMPARE(scene.clipboard(), record);
        QCOMPARE(scene.pasteboard->reads, 0);
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
            const bool isPage = copied == blog;
            const QString failure =
                isPage ? "Confluence returned HTTP 404" : "Jira returned HTTP 404";
            QCOMPARE(scene.notifications->shown, QStringList("Brindle|" + failure));
            QVERIFY(scene.takeLog().contains(
                (isPage ? "enrich: confluence fetch failed (" : "enrich: fetch failed (") +
                failure + ")"));
            QCOMPARE(scene.pasteboard->count, changes);
            QCOMPARE(scene.pasted, QString());
            QCOMPARE(scene.app.fetchingStates, QList<bool>({true, false, true, false}));
        }
    }

    void lockedKeyringIsToldOnceAndDimsTheIcon() {
        for (const bool unlocks : {true, false}) {
            Scene scene(issue);
            scene.secretStore->isLocked = true;
            Enrichment::run(true);
            scene.dispatch->drain();
            QVERIFY(scene.secretStore->isPrompting());
            for (int presses = 0; presses < 2; ++presses) {
                Enrichment::run(true);
                QCOMPARE(scene.takeLog().constLast(),
                         "enrich: a fetch is already in flight — ignoring re-trigger");
            }
            QCOMPARE(scene.notifications->shown,
                     QStringList("Brindle|Keychain is waiting for its password."));
            QCOMPARE(scene.app.fetchingStates, QList<bool>{true});
            scene.answer(200, R"({"fields":{"summary":"Crash"}})");
            scene.secretStore->answerPrompt(unlocks);
            scene.dispatch->advance(3s);
            QCOMPARE(scene.pasted.isEmpty(), !unlocks);
            QCOMPARE(scene.notifications->shown.value(1),
                     unlocks ? QString() : "Brindle|Jira API token not set. Open Preferences.");
            QCOMPARE(scene.app.fetchingStates, QList<bool>({true, false}));
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
            {"Not Authorized", true},
            {"no display", false},
        };
        for (const auto &[reason, permission] : cases) {
            Scene scene;
            scene.pasteKeys->canPost = false;
            scene.childProcess->result = {{}, 1, reason.toUtf8()};
            scene.run();
            QCOMPARE(scene.clipboard(), recordLink);
            QVERIFY(!ClipboardRestorer::isDelivering());
            QVERIFY(scene.takeLog().contains("enrich: paste failed (" + reason + ")"));
            if (permission)
                QVERIFY(
                    scene.alerts->shown.value(0).informativeText.endsWith("Details: " + reason));
            QCOMPARE(scene.alerts->shown.size(), permission ? 1 : 0);
            QCOMPARE(
                scene.notifications->shown,
                permission
                    ? QStringList()
                    : QStringList("Brindle|Clipboard updated but paste failed: " + reason + "."));
        }
    }
};

QTEST_GUILESS_MAIN(TestRun)
#include "test_enrichment_run.moc"
