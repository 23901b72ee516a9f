#include "fakes/FakePlatform.h"
#include "preferences/PreferencesView.h"
#include "preferences/connection/ConnectionTab.h"
#include "preferences/kit/ResultLine.h"
#include "preferences/template/TemplatePreview.h"
#include "storage/Settings.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

namespace {

const QString site = "https://h.example";
const QString probe[] = {
    "https://api.atlassian.com/ex/jira/c-1/rest/api/3/project/search?maxResults=1",
    "https://api.atlassian.com/ex/confluence/c-1/wiki/api/v2/pages?limit=1"};
const QString secret[] = {"org.ostrowind.brindle/jira-api-token",
                          "org.ostrowind.brindle/confluence-api-token"};
const QString noEmail = "! Set your Atlassian email first.";

/// The first widget of that kind that is on the screen and for which `name` is its title, its
/// accessible name or its text.
template <class W>
W *find(const QWidget &parent, const QString &name, int place = 0) {
    for (W *widget : parent.findChildren<W *>()) {
        const bool fits = widget->accessibleName() == name || widget->property("text") == name;
        if (fits && widget->isVisible() && place-- == 0)
            return widget;
    }
    return nullptr;
}

void click(QWidget *button) {
    QVERIFY(button);
    QTest::mouseClick(button, Qt::LeftButton);
}

void type(QLineEdit *field, const QString &text) {
    QVERIFY(field);
    field->selectAll();
    QTest::keyClick(field, Qt::Key_Delete);
    QTest::keyClicks(field, text);
}

/// The tab, loaded, for a user whose site and e-mail are set.
struct Scene : FakePlatform {
    Scene() {
        Settings::shared().baseURL = site;
        Settings::shared().email = "ann@h.example";
        urlSession->answers = {{site + "/_edge/tenant_info", {200, R"({"cloudId":"c-1"})", {}}},
                               {probe[0], {200, {}, {}}},
                               {probe[1], {200, {}, {}}}};
    }
    void open() {
        tab = std::make_unique<ConnectionTab>();
        tab->show();
        dispatch->drain();
    }
    void answerPrompts(bool unlock) {
        for (dispatch->drain(); secretStore->isPrompting(); dispatch->drain())
            secretStore->answerPrompt(unlock);
    }
    QLineEdit *token(int block) const {
        return find<QLineEdit>(*tab, block == 0 ? "Jira API Token" : "Confluence API Token");
    }
    QPushButton *save(int block) const { return find<QPushButton>(*tab, "Save Token", block); }
    QPushButton *test(int block) const { return find<QPushButton>(*tab, "Test Connection", block); }
    QString told(int block) const {
        const ResultLine *result = tab->findChildren<ResultLine *>().at(block + 1);
        return (result->state() == ResultLine::State::Warning ? "! " : "") + result->text();
    }

    std::unique_ptr<ConnectionTab> tab;
};

} // namespace

class TestConnection : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tokens_data() {
        QTest::addColumn<int>("block");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("refused");
        QTest::addColumn<QString>("tested");
        QTest::newRow("jira") << 0 << " s3cret " << false << "Connected to h.example.";
        QTest::newRow("jira, cleared") << 0 << "  " << false << "! Set your API token first.";
        QTest::newRow("confluence")
            << 1 << " s3cret" << false << "Connected to Confluence on h.example.";
        QTest::newRow("confluence, refused")
            << 1 << "s3cret" << true << "! Set your Confluence API token first.";
    }
    void tokens() {
        QFETCH(int, block);
        QFETCH(QString, typed);
        QFETCH(bool, refused);
        QFETCH(QString, tested);
        Scene scene;
        scene.secretStore->refusesAdditions = refused;
        const std::optional<QDateTime> before = scene.dispatch->wallTime().addDays(-80);
        const auto setBack = [&] {
            scene.secretStore->secrets = {{secret[0], "old"}, {secret[1], "old"}};
            Settings::shared().tokenSavedAt = before;
        };
        const QByteArray stored = refused ? "" : typed.trimmed().toUtf8();
        const auto verifyStored = [&] {
            QCOMPARE(scene.secretStore->secrets.value(secret[block]), stored);
            QCOMPARE(scene.secretStore->secrets.value(secret[1 - block]), "old");
            const QDateTime now = scene.dispatch->wallTime();
            QCOMPARE(Settings::shared().tokenSavedAt(), block == 1         ? before
                                                        : stored.isEmpty() ? std::nullopt
                                                                           : std::optional(now));
            QCOMPARE(find<QLabel>(*scene.tab, "Token saved today.") != nullptr,
                     block == 0 && !stored.isEmpty());
        };
        setBack();
        scene.open();
        QCOMPARE(scene.token(block)->text(), "old");
        QCOMPARE(scene.told(block), "");
        QVERIFY(find<QLabel>(*scene.tab, "Token saved 80 days ago. — consider rotating."));

        type(scene.token(block), typed);
        click(scene.test(block));
        QCOMPARE(scene.told(block), "Testing…");
        QVERIFY(scene.urlSession->requests.isEmpty()); // the window never waits
        scene.dispatch->drain();
        QCOMPARE(scene.told(block), tested);
        QCOMPARE(Settings::shared().cloudId(), tested.startsWith("Connected") ? "c-1" : "");
        verifyStored();

        setBack();
        if (block == 0)
            QTest::keyClick(scene.token(block), Qt::Key_Return);
        else
            click(scene.save(block));
        scene.dispatch->drain();
        QVERIFY(scene.told(block).contains(refused            ? "! Failed"
                                           : stored.isEmpty() ? "cleared"
                                                              : "saved"));
        verifyStored();
        QCOMPARE(scene.token(block)->text(), typed);
        QCOMPARE(scene.app.fetchingStates.size(), block == 0 ? 2 : 0); // the icon nudges
        QVERIFY(!scene.takeLog().join(' ').contains("s3cret"));
    }

    void theNewestWordStands() {
        Scene scene;
        scene.open();
        type(scene.token(0), "t1");
        click(scene.save(0));
        click(scene.test(0)); // before the keyring has answered
        QCOMPARE(scene.told(0), "Testing…");
        Settings::shared().baseURL = "https://other.example";
        click(scene.test(0));
        scene.dispatch->drain();
        QCOMPARE(scene.told(0), "! Cloud ID lookup timed out"); // nobody answers there
        QVERIFY(scene.urlSession->requests.first().url.toString().startsWith(site));
        Settings::shared().baseURL = site;
        scene.urlSession->answers[probe[0]].httpStatus = 401;
        click(scene.test(0));
        scene.dispatch->drain();
        QVERIFY(scene.told(0).startsWith("! Token rejected (HTTP 401)"));

        type(find<QLineEdit>(*scene.tab, "Atlassian Email"), "");
        click(scene.save(0));
        click(scene.test(0));
        scene.dispatch->drain();
        QCOMPARE(scene.told(0), noEmail); // not that it was saved
    }

    void aClosedTabOrAnotherSiteIsNotTouched() {
        for (const bool isClosed : {true, false}) {
            Scene scene;
            scene.open();
            type(scene.token(0), "t1");
            click(scene.test(0));
            while (scene.urlSession->requests.size() < 2)
                QVERIFY(scene.dispatch->runNext());
            if (isClosed)
                scene.tab.reset();
            Settings::shared().baseURL = isClosed ? site : "https://other.example";
            scene.dispatch->drain();
            QCOMPARE(Settings::shared().cloudId(), "");
        }
        Scene scene;
        scene.open();
        click(scene.save(0));
        scene.tab.reset(); // before the keyring has answered
        scene.dispatch->drain();
        auto preview = std::make_unique<JiraPreviewSource>();
        preview->fetch("AB-7");
        preview.reset();
        scene.dispatch->drain();
    }

    void emptyFieldIsNotSavedBeforeTheTokenIsThere() {
        Scene scene;
        scene.secretStore->secrets[secret[0]] = "t1";
        scene.tab = std::make_unique<ConnectionTab>();
        scene.tab->show();
        click(scene.save(0)); // with the field still empty
        scene.dispatch->drain();
        QCOMPARE(scene.secretStore->secrets.value(secret[0]), "t1");
        QCOMPARE(scene.token(0)->text(), "t1");
        QCOMPARE(scene.token(0)->echoMode(), QLineEdit::Password);
        click(find<QPushButton>(*scene.tab, "Create or manage API tokens at id.atlassian.com"));
        QVERIFY(scene.workspace->urls.value(0).endsWith("/manage-profile/security/api-tokens"));
    }

    void lockedKeyring_data() {
        QTest::addColumn<int>("block");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("isTest");
        QTest::addColumn<bool>("unlocks");
        QTest::addColumn<QString>("told");
        QTest::addColumn<QByteArray>("left");
        const QString unchanged = " It is still locked; nothing was changed.";
        QTest::newRow("clear") << 0 << "" << false << true << "Token cleared." << QByteArray();
        QTest::newRow("clear, refused")
            << 0 << "" << false << false << "! Failed to clear token in Keychain." + unchanged
            << QByteArray("old");
        QTest::newRow("save") << 1 << "new" << false << true
                              << "Confluence token saved to Keychain." << QByteArray("new");
        QTest::newRow("save, refused")
            << 1 << "new" << false << false
            << "! Failed to save Confluence token to Keychain." + unchanged << QByteArray("old");
        QTest::newRow("test") << 0 << "new" << true << true << "Connected to h.example."
                              << QByteArray("new");
        QTest::newRow("test, refused")
            << 0 << "new" << true << false << "! Failed to save token to Keychain." + unchanged
            << QByteArray("old");
        QTest::newRow("test of nothing")
            << 1 << " " << true << true << "Connected to Confluence on h.example."
            << QByteArray("old");
        QTest::newRow("test of nothing, refused")
            << 0 << "" << true << false
            << "! Failed to read token from Keychain. It is still locked." << QByteArray("old");
    }
    /// The prompts that came with the tab were dismissed, so the fields are empty.
    void lockedKeyring() {
        QFETCH(int, block);
        QFETCH(QString, text);
        QFETCH(bool, isTest);
        QFETCH(bool, unlocks);
        QFETCH(QString, told);
        QFETCH(QByteArray, left);
        Scene scene;
        const std::optional<QDateTime> before = scene.dispatch->wallTime().addDays(-3);
        Settings::shared().tokenSavedAt = before;
        scene.secretStore->secrets = {{secret[0], "old"}, {secret[1], "old"}};
        scene.secretStore->isLocked = true;
        scene.open();
        QCOMPARE(scene.told(0), "Keychain is waiting for its password.");
        QVERIFY(!scene.save(0)->isEnabled());
        scene.answerPrompts(false);
        QCOMPARE(scene.told(0), "! Failed to read token from Keychain. It is still locked.");
        QCOMPARE(scene.told(1),
                 "! Failed to read Confluence token from Keychain. It is still locked.");
        QCOMPARE(scene.token(block)->text(), "");

        type(scene.token(block), text);
        click(isTest ? scene.test(block) : scene.save(block));
        scene.answerPrompts(unlocks);
        QCOMPARE(scene.told(block), told);
        QCOMPARE(scene.secretStore->secrets.value(secret[block]), left);
        QCOMPARE(scene.secretStore->secrets.value(secret[1 - block]), "old");
        const bool isChanged = block == 0 && left != "old";
        QCOMPARE(Settings::shared().tokenSavedAt() == before, !isChanged);
        // What was read after all is shown, unless something stands there.
        QCOMPARE(scene.token(block)->text(), text.isEmpty() && isTest && unlocks ? "old" : text);
    }

    void keyringThatFailsIsNotEmpty() {
        Scene scene;
        scene.secretStore->secrets[secret[0]] = "old";
        scene.secretStore->failure = SecretStore::Outcome::Unavailable;
        scene.open();
        QCOMPARE(scene.told(-1),
                 "! No keyring keeps API tokens here. Install gnome-keyring, KWallet "
                 "or KeePassXC, switch its Secret Service on and log in again.");
        QCOMPARE(scene.told(0), "! Failed to read token from Keychain.");
        click(scene.save(0));
        scene.dispatch->drain();
        QCOMPARE(scene.told(0), "! Failed to clear token in Keychain.");
        scene.secretStore->failure.reset();
        click(scene.test(0));
        scene.dispatch->drain();
        QCOMPARE(scene.told(0), "Connected to h.example.");
        QCOMPARE(scene.token(0)->text(), "old");
    }

    void typedAddressIsWrittenAtAPauseOrWhenTheFieldIsLeft() {
        Scene scene;
        PreferencesView view;
        view.selectTab(PreferencesTab::Connection);
        view.show();
        view.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&view));
        scene.dispatch->drain();
        auto *address = find<QLineEdit>(view, "Base URL");
        QVERIFY(address);
        address->setFocus();
        const int writes = scene.defaults->flushes;
        type(address, "https://x.example");
        QCOMPARE(Settings::shared().baseURL(), "https://x.example");
        QCOMPARE(scene.defaults->flushes, writes);
        scene.dispatch->advance(std::chrono::milliseconds(500));
        QCOMPARE(scene.defaults->flushes, writes + 1);
        QTest::keyClick(address, Qt::Key_A);
        QCOMPARE(scene.defaults->onDisk.value("jiraBaseURL"), "https://x.example");
        find<QLineEdit>(view, "Atlassian Email")->setFocus();
        QCOMPARE(scene.defaults->onDisk.value("jiraBaseURL"), "https://x.examplea");
    }

    void preview() {
        Scene scene;
        Settings::shared().cloudId = "c-1";
        Settings::shared().displayTemplate = "{key}|{TYPE}|{summary}|{status}";
        Settings::shared().confluenceTemplate = "{title}|{space}|{type}|{id}";
        scene.secretStore->secrets = {{secret[0], "t1"}, {secret[1], "t2"}};
        const QString gateway = "https://api.atlassian.com/ex/";
        const QString issue =
            gateway + "jira/c-1/rest/api/3/issue/%1?fields=summary,issuetype,status";
        scene.urlSession->answers = {
            {issue.arg("AB-7"),
             {200, R"({"fields":{"summary":"Boom & <co>","issuetype":{"name":"Bug"}}})", {}}},
            {issue.arg("AB-8"), {404, {}, {}}},
            {gateway + "confluence/c-1/wiki/api/v2/pages/12345", {200, R"({"title":"Plan"})", {}}}};
        const char *sample[] = {"AB-12|BUG|Fix login crash|In Progress",
                                "Q3 Planning Notes|ENG|Page|4587213"};
        struct Fetch {
            int product;
            QString input, caption, error, rendered;
        };
        for (const auto &[product, input, caption, error, rendered] :
             {Fetch{0, " ab-7 ", "AB-7", "", "AB-7|BUG|Boom & <co>|"},
              Fetch{0, "AB-8", "Sample ticket", "Jira returned HTTP 404", sample[0]},
              Fetch{1, "12345", "Page 12345", "", "Plan|?|Page|12345"},
              Fetch{1, "https://h.example/wiki/spaces/eng/blog/2024/12345/x", "Page 12345", "",
                    "Plan|ENG|Blog|12345"},
              Fetch{1, "hello", "Sample page",
                    "Paste a Confluence page URL (or a numeric page id).", sample[1]}}) {
            JiraPreviewSource jira;
            ConfluencePreviewSource confluence;
            JiraTemplatePreview jiraView(jira);
            ConfluenceTemplatePreview confluenceView(confluence);
            PreviewSource &source = product == 0 ? static_cast<PreviewSource &>(jira) : confluence;
            TemplatePreview &view =
                product == 0 ? static_cast<TemplatePreview &>(jiraView) : confluenceView;
            view.show();
            QVERIFY(!find<QPushButton>(view, "Fetch")->isEnabled());
            scene.urlSession->requests.clear();
            type(view.findChild<QLineEdit *>(), input);
            QTest::keyClick(view.findChild<QLineEdit *>(), Qt::Key_Return);
            QVERIFY(scene.urlSession->requests.isEmpty()); // the window never waits
            auto *fetching = find<QPushButton>(view, "Fetching…");
            QVERIFY(fetching && !fetching->isEnabled());
            scene.dispatch->drain();
            QVERIFY2(find<QLabel>(view, caption), qPrintable(source.caption()));
            QCOMPARE(source.error().value_or(""), error);
            QVERIFY(error.isEmpty() || find<QLabel>(view, error));
            QCOMPARE(source.rendered(), rendered);
            QVERIFY(find<QLabel>(view, styledMarked(rendered)));
            auto *clear = find<QPushButton>(view, "Clear");
            QCOMPARE(clear != nullptr, error.isEmpty());
            if (clear)
                click(clear);
            QCOMPARE(source.rendered(), sample[product]);
        }
        ConfluencePreviewSource confluence;
        scene.secretStore->secrets.clear();
        confluence.fetch("12345");
        scene.dispatch->drain();
        QCOMPARE(confluence.error(), "Set your Confluence API token first (Connection tab).");
        Settings::shared().email = "";
        confluence.fetch("12345");
        QCOMPARE(confluence.error(), noEmail.mid(2));
    }

    void sampleFollowsChoiceTemplateAndSite() {
        Scene scene;
        Settings::shared().displayTemplate = "{key}<c> by {commenter-name}</c>";
        JiraPreviewSource source;
        JiraTemplatePreview view(source);
        view.show();
        QVERIFY(source.rendered().startsWith("AB-12 by "));
        click(find<QRadioButton>(view, "Issue link"));
        QVERIFY(find<QLabel>(view, styledMarked("AB-12")));
        Settings::shared().displayTemplate = "a <i>b <b>{key}</i> d</b> < e";
        const QString shown = styledMarked(source.rendered());
        QVERIFY(find<QLabel>(view, shown));
        for (const char *part : {"<i>b </i>", "<b><i>AB-12</i></b>", "<b> d</b>", " &lt; e"})
            QVERIFY2(shown.contains(part), part);
        Settings::shared().baseURL = " https://h.example/ ";
        QCOMPARE(source.url(), "https://h.example/browse/AB-12");
    }
};

QTEST_MAIN(TestConnection)
#include "test_preferences_connection.moc"
