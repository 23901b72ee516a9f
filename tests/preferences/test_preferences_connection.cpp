#include "fakes/FakePlatform.h"
#include "model/MarkedText.h"
#include "preferences/ConnectionTab.h"
#include "preferences/TemplatePreview.h"
#include "preferences/kit/ResultLine.h"
#include "preferences/kit/Style.h"
#include "storage/Settings.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

namespace {

const QString site = "https://h.example";
const QString tenant = site + "/_edge/tenant_info";
const QString jiraProbe =
    "https://api.atlassian.com/ex/jira/c-1/rest/api/3/project/search?maxResults=1";
const QString confluenceProbe =
    "https://api.atlassian.com/ex/confluence/c-1/wiki/api/v2/pages?limit=1";
const QString jiraSecret = "org.ostrowind.brindle/jira-api-token";
const QString confluenceSecret = "org.ostrowind.brindle/confluence-api-token";

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
        urlSession->answers[tenant] = {200, R"({"cloudId":"c-1"})", {}};
    }
    void open() {
        tab = std::make_unique<ConnectionTab>();
        tab->show();
        dispatch->drain();
    }
    QLineEdit *token(int block) const {
        return find<QLineEdit>(*tab, block == 0 ? "Jira API Token" : "Confluence API Token");
    }
    QPushButton *save(int block) const { return find<QPushButton>(*tab, "Save Token", block); }
    QPushButton *test(int block) const { return find<QPushButton>(*tab, "Test Connection", block); }
    ResultLine *result(int block) const { return tab->findChildren<ResultLine *>().at(block); }
    QString told(int block) const {
        const ResultLine::State state = result(block)->state();
        return (state == ResultLine::State::Warning ? "! " : "") + result(block)->text();
    }

    std::unique_ptr<ConnectionTab> tab;
};

} // namespace

class TestConnection : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void saving_data() {
        QTest::addColumn<int>("block");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("refused");
        QTest::addColumn<QString>("told");
        QTest::addColumn<QByteArray>("stored");
        QTest::newRow("jira") << 0 << " t1 " << false << "Token saved to Keychain."
                              << QByteArray("t1");
        QTest::newRow("jira cleared") << 0 << "  " << false << "Token cleared." << QByteArray();
        QTest::newRow("confluence")
            << 1 << " t2" << false << "Confluence token saved to Keychain." << QByteArray("t2");
        QTest::newRow("confluence refused")
            << 1 << "t2" << true << "! Failed to save Confluence token to Keychain."
            << QByteArray();
    }
    void saving() {
        QFETCH(int, block);
        QFETCH(QString, typed);
        QFETCH(bool, refused);
        QFETCH(QByteArray, stored);
        Scene scene;
        scene.secretStore->secrets = {{jiraSecret, "old"}, {confluenceSecret, "old"}};
        const QDateTime before = scene.dispatch->wallTime().addDays(-3);
        Settings::shared().tokenSavedAt = before;
        scene.open();
        QCOMPARE(scene.token(block)->text(), "old");
        QVERIFY(!scene.result(block)->isVisible());

        scene.secretStore->refusesAdditions = refused;
        type(scene.token(block), typed);
        if (block == 0)
            QTest::keyClick(scene.token(block), Qt::Key_Return);
        else
            click(scene.save(block));
        scene.dispatch->drain();
        QTEST(scene.told(block), "told");
        QCOMPARE(scene.token(block)->text(), typed);
        QCOMPARE(scene.secretStore->secrets.value(block ? confluenceSecret : jiraSecret), stored);
        QCOMPARE(scene.secretStore->secrets.value(block ? jiraSecret : confluenceSecret), "old");
        std::optional<QDateTime> savedAt = before;
        if (block == 0 && !refused)
            savedAt = stored.isEmpty() ? std::nullopt : std::optional(scene.dispatch->wallTime());
        QCOMPARE(Settings::shared().tokenSavedAt(), savedAt);
        QCOMPARE(scene.app.fetchingStates.size(), block == 0 ? 1 : 0);
    }

    void testing_data() {
        QTest::addColumn<int>("block");
        QTest::addColumn<QString>("email");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("tenantStatus");
        QTest::addColumn<int>("probeStatus");
        QTest::addColumn<QString>("told");
        const QString email = "ann@h.example";
        QTest::newRow("jira") << 0 << email << "t1" << 200 << 200 << "Connected to h.example.";
        QTest::newRow("jira, no e-mail")
            << 0 << ""
            << "t1" << 200 << 200 << "! Set your Atlassian email first.";
        QTest::newRow("jira, no site") << 0 << email << "t1" << 404 << 200
                                       << "! Couldn't read cloud ID from h.example (HTTP 404)";
        QTest::newRow("jira, rejected")
            << 0 << email << "t1" << 200 << 401
            << "! Token rejected (HTTP 401). Check the email + token combination.";
        QTest::newRow("confluence")
            << 1 << email << "t2" << 200 << 200 << "Connected to Confluence on h.example.";
        QTest::newRow("confluence, no token")
            << 1 << email << "" << 200 << 200 << "! Set your Confluence API token first.";
    }
    void testing() {
        QFETCH(int, block);
        QFETCH(QString, email);
        QFETCH(QString, typed);
        QFETCH(int, tenantStatus);
        QFETCH(int, probeStatus);
        QFETCH(QString, told);
        Scene scene;
        scene.urlSession->answers[tenant].httpStatus = tenantStatus;
        if (probeStatus != 0)
            scene.urlSession->answers[block ? confluenceProbe : jiraProbe] = {probeStatus, {}, {}};
        scene.open();
        type(find<QLineEdit>(*scene.tab, "Atlassian Email"), email);
        QCOMPARE(Settings::shared().email(), email);
        type(scene.token(block), typed);
        click(scene.test(block));
        QCOMPARE(scene.told(block),
                 email.isEmpty() ? "! Set your Atlassian email first." : "Testing…");
        QVERIFY(scene.urlSession->requests.isEmpty());
        scene.dispatch->drain();
        QCOMPARE(scene.told(block), told);
        QCOMPARE(Settings::shared().cloudId(), told.startsWith("Connected") ? "c-1" : "");
        QCOMPARE(scene.secretStore->secrets.value(block ? confluenceSecret : jiraSecret),
                 typed.trimmed().toUtf8());
        QVERIFY(!scene.takeLog().join(' ').contains(typed + ' '));
    }

    void theNewestWordStands() {
        Scene scene;
        scene.urlSession->answers[jiraProbe] = {200, {}, {}};
        scene.open();
        type(scene.token(0), "t1");
        click(scene.save(0));
        click(scene.test(0)); // before the keyring has answered
        QCOMPARE(scene.told(0), "Testing…");
        Settings::shared().baseURL = "https://other.example";
        click(scene.test(0));
        scene.dispatch->drain();
        QCOMPARE(scene.told(0), "! Cloud ID lookup timed out"); // nobody answers there
        QCOMPARE(scene.urlSession->requests.first().url.toString(), tenant);

        Settings::shared().email = "";
        click(scene.save(0));
        click(scene.test(0));
        scene.dispatch->drain();
        QCOMPARE(scene.told(0), "! Set your Atlassian email first."); // not that it was saved
    }

    void aClosedTabIsNotTouched() {
        Scene scene;
        scene.urlSession->answers[jiraProbe] = {200, {}, {}};
        scene.open();
        type(scene.token(0), "t1");
        click(scene.test(0));
        scene.tab.reset();
        scene.dispatch->drain();
        QCOMPARE(Settings::shared().cloudId(), "");

        auto preview = std::make_unique<JiraPreviewSource>();
        preview->fetch("AB-7");
        preview.reset();
        scene.dispatch->drain();
    }

    void nothingIsSavedBeforeTheTokenIsThere() {
        Scene scene;
        scene.secretStore->secrets[jiraSecret] = "t1";
        scene.tab = std::make_unique<ConnectionTab>();
        scene.tab->show();
        click(scene.save(0)); // with the field still empty
        scene.dispatch->drain();
        QCOMPARE(scene.secretStore->secrets.value(jiraSecret), "t1");
        QCOMPARE(scene.token(0)->text(), "t1");
        QCOMPARE(scene.token(0)->echoMode(), QLineEdit::Password);
    }

    void age() {
        Scene scene;
        scene.open();
        QVERIFY(!find<QLabel>(*scene.tab, "Token saved today."));
        const QList<std::pair<int, QString>> cases{
            {0, "Token saved today."},
            {1, "Token saved 1 day ago."},
            {79, "Token saved 79 days ago."},
            {80, "Token saved 80 days ago. — consider rotating."}};
        for (const auto &[days, text] : cases) {
            Settings::shared().tokenSavedAt = scene.dispatch->wallTime().addDays(-days);
            const QLabel *line = find<QLabel>(*scene.tab, text);
            QVERIFY2(line, qPrintable(text));
            const auto role = days < 80 ? Style::ColourRole::Secondary : Style::ColourRole::Warning;
            QCOMPARE(line->palette().color(QPalette::WindowText),
                     Style::colour(role, scene.tab->palette()));
        }
        Settings::shared().tokenSavedAt = std::nullopt;
        QVERIFY(!find<QLabel>(*scene.tab, cases.last().second));
    }

    void tokenPage() {
        Scene scene;
        scene.open();
        auto *link =
            find<QPushButton>(*scene.tab, "Create or manage API tokens at id.atlassian.com");
        QVERIFY(link);
        link->setFocus();
        QTest::keyClick(link, Qt::Key_Space);
        QCOMPARE(scene.workspace->urls,
                 QStringList("https://id.atlassian.com/manage-profile/security/api-tokens"));
        scene.workspace->canOpen = false;
        click(link);
        QCOMPARE(scene.takeLog().size(), 1);
    }

    void preview_data() {
        QTest::addColumn<bool>("isJira");
        QTest::addColumn<QString>("email");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QByteArray>("answer"); // to the only request; empty for 404
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QString>("error");
        QTest::addColumn<QString>("rendered");
        const QString email = "ann@h.example";
        const QByteArray issue = R"({"fields":{"summary":"Boom","issuetype":{"name":"Bug"}}})";
        const QByteArray page = R"({"title":"Plan"})";
        const QString sample = "AB-12|BUG|Fix login crash|In Progress";
        const QString samplePage = "Q3 Planning Notes|ENG|Page|4587213";
        QTest::newRow("issue") << true << email << " ab-7 " << issue << "AB-7"
                               << ""
                               << "AB-7|BUG|Boom|";
        QTest::newRow("unknown issue") << true << email << "AB-7" << QByteArray() << "Sample ticket"
                                       << "Jira returned HTTP 404" << sample;
        QTest::newRow("issue, no e-mail") << true << ""
                                          << "AB-7" << issue << "Sample ticket"
                                          << "Set your Atlassian email first." << sample;
        QTest::newRow("page, no token")
            << false << email << "hello" << page << "Sample page"
            << "Set your Confluence API token first (Connection tab)." << samplePage;
        QTest::newRow("page id") << false << email << "12345" << page << "Page 12345"
                                 << ""
                                 << "Plan|?|Page|12345";
        QTest::newRow("blog post")
            << false << email << "https://h.example/wiki/spaces/eng/blog/2024/12345/x" << page
            << "Page 12345"
            << ""
            << "Plan|ENG|Blog|12345";
        QTest::newRow("no page") << false << email << "hello" << page << "Sample page"
                                 << "Paste a Confluence page URL (or a numeric page id)."
                                 << samplePage;
    }
    void preview() {
        QFETCH(bool, isJira);
        QFETCH(QString, email);
        QFETCH(QString, input);
        QFETCH(QByteArray, answer);
        QFETCH(QString, error);
        Scene scene;
        Settings::shared().email = email;
        Settings::shared().cloudId = "c-1";
        Settings::shared().displayTemplate = "{key}|{TYPE}|{summary}|{status}";
        Settings::shared().confluenceTemplate = "{title}|{space}|{type}|{id}";
        scene.secretStore->secrets = {{jiraSecret, "t1"}, {confluenceSecret, "t2"}};
        if (error.contains("token"))
            scene.secretStore->secrets.clear();
        const UrlResponse response{answer.isEmpty() ? 404 : 200, answer, {}};
        scene.urlSession->answers = {
            {"https://api.atlassian.com/ex/jira/c-1/rest/api/3/issue/"
             "AB-7?fields=summary,issuetype,status",
             response},
            {"https://api.atlassian.com/ex/confluence/c-1/wiki/api/v2/pages/12345", response}};
        JiraPreviewSource jira;
        ConfluencePreviewSource confluence;
        PreviewSource &source = isJira ? static_cast<PreviewSource &>(jira) : confluence;
        std::unique_ptr<TemplatePreview> view;
        if (isJira)
            view = std::make_unique<JiraTemplatePreview>(jira);
        else
            view = std::make_unique<ConfluenceTemplatePreview>(confluence);
        view->show();
        auto *field = view->findChild<QLineEdit *>();
        QVERIFY(!find<QPushButton>(*view, "Fetch")->isEnabled());
        QVERIFY(!find<QPushButton>(*view, "Clear"));

        type(field, input);
        QTest::keyClick(field, Qt::Key_Return);
        QVERIFY(scene.urlSession->requests.isEmpty()); // the window never waits
        if (auto *fetching = find<QPushButton>(*view, "Fetching…"))
            QVERIFY(!fetching->isEnabled());
        else
            QVERIFY(email.isEmpty());
        scene.dispatch->drain();
        QTEST(source.caption(), "caption");
        QVERIFY(find<QLabel>(*view, source.caption()));
        QCOMPARE(source.error().value_or(""), error);
        QVERIFY(error.isEmpty() || find<QLabel>(*view, error));
        QTEST(source.rendered(), "rendered");
        QVERIFY(find<QLabel>(*view, styledMarked(source.rendered())));

        auto *clear = find<QPushButton>(*view, "Clear");
        QCOMPARE(clear != nullptr, source.showsReal());
        if (clear)
            click(clear);
        QVERIFY(find<QLabel>(*view, isJira ? "Sample ticket" : "Sample page"));
    }

    void sampleFollowsChoiceAndTemplate() {
        Scene scene;
        Settings::shared().displayTemplate = "{key}<c> by {commenter-name}</c>";
        JiraPreviewSource source;
        JiraTemplatePreview view(source);
        view.show();
        const QString withComment = source.rendered();
        QVERIFY(withComment.startsWith("AB-12 by "));
        click(find<QRadioButton>(view, "Issue link"));
        QCOMPARE(source.rendered(), "AB-12");
        QVERIFY(find<QLabel>(view, styledMarked("AB-12")));
        Settings::shared().displayTemplate = "<b>{key}</b>";
        QVERIFY(find<QLabel>(view, styledMarked(source.rendered())));
        QTest::keyClick(find<QRadioButton>(view, "Comment link"), Qt::Key_Space);
        QVERIFY(source.sampleShowsComment());
    }

    void sampleAddress() {
        Scene scene;
        const QList<std::pair<QString, QString>> cases{
            {"  ", "https://your-team.atlassian.net/browse/AB-12"},
            {" https://h.example/ ", "https://h.example/browse/AB-12"},
            {"https://h.example//", "https://h.example//browse/AB-12"}};
        for (const auto &[base, url] : cases) {
            Settings::shared().baseURL = base;
            QCOMPARE(JiraPreviewSource().url(), url);
        }
    }

    void styles() {
        const auto marked = [](const QString &text) {
            return styledMarked(Enrichment::applyStyleTags(text));
        };
        QLabel label(marked("a <i>b <b>c</i> d</b> &lt; e"));
        QVERIFY(label.text().contains("<i>b </i>"));
        QVERIFY(label.text().contains("<b><i>c</i></b>"));
        QVERIFY(label.text().contains("<b> d</b>"));
        QVERIFY(label.text().contains("&amp;lt;"));
    }
};

QTEST_MAIN(TestConnection)
#include "test_preferences_connection.moc"
