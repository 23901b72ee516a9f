#include "fakes/FakePlatform.h"
#include "preferences/kit/SelectableLabel.h"
#include "preferences/template/TemplatePreview.h"
#include "storage/Settings.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTest>

namespace {

const QString gateway = "https://api.atlassian.com/ex/";

/// One of the two previews on the screen, for a user who has both tokens.
struct Scene : FakePlatform {
    explicit Scene(bool isJira) {
        Settings::shared().baseURL = "https://h.example";
        Settings::shared().email = "ann@h.example";
        Settings::shared().cloudId = "c-1";
        secretStore->secrets = {{"org.ostrowind.brindle/jira-api-token", "jira-token"},
                                {"org.ostrowind.brindle/confluence-api-token", "page-token"}};
        good = isJira ? "AB-7" : "12345";
        bad = isJira ? "AB-8" : "678";
        failure = isJira ? "Jira returned HTTP 404" : "Confluence returned HTTP 404";
        caption = isJira ? "AB-7" : "Page 12345";
        sample = isJira ? "Sample ticket" : "Sample page";
        urlSession->answers = {
            {issue(good), {200, R"({"fields":{"summary":"Boom"}})", {}}},
            {issue(bad), {404, {}, {}}},
            {page(good), {200, R"({"title":"Plan"})", {}}},
            {page(bad), {404, {}, {}}},
        };
        if (isJira) {
            source = std::make_unique<JiraPreviewSource>();
            view = std::make_unique<JiraTemplatePreview>(static_cast<JiraPreviewSource &>(*source));
        } else {
            source = std::make_unique<ConfluencePreviewSource>();
            view = std::make_unique<ConfluenceTemplatePreview>(
                static_cast<ConfluencePreviewSource &>(*source));
        }
        view->show();
    }
    static QString issue(const QString &key) {
        return gateway + "jira/c-1/rest/api/3/issue/" + key + "?fields=summary,issuetype,status";
    }
    static QString page(const QString &id) {
        return gateway + "confluence/c-1/wiki/api/v2/pages/" + id;
    }

    void begin(const QString &input) {
        auto *field = view->findChild<QLineEdit *>();
        field->setText(input);
        QTest::keyClick(field, Qt::Key_Return);
    }
    void fetch(const QString &input) {
        begin(input);
        dispatch->drain();
    }
    bool shows(const QString &text) const {
        for (const QLabel *label : view->findChildren<QLabel *>()) {
            if (label->isVisible() && label->text() == text)
                return true;
        }
        return false;
    }
    QPushButton *clear() const {
        for (auto *button : view->findChildren<QPushButton *>()) {
            if (button->text() == "Clear")
                return button;
        }
        return nullptr;
    }

    QString good, bad, failure, caption, sample;
    std::unique_ptr<PreviewSource> source;
    std::unique_ptr<TemplatePreview> view;
};

} // namespace

class TestPreview : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data() {
        QTest::addColumn<bool>("isJira");
        QTest::newRow("jira") << true;
        QTest::newRow("confluence") << false;
    }

    void aFailureKeepsWhatWasShown() {
        QFETCH_GLOBAL(bool, isJira);
        Scene scene(isJira);
        scene.fetch(scene.good);
        const QString rendered = scene.source->rendered();
        scene.fetch(scene.bad);
        QVERIFY(scene.shows(scene.failure));
        QVERIFY(scene.shows(scene.caption));
        QCOMPARE(scene.source->rendered(), rendered);
        QVERIFY(scene.clear()->isVisible());
    }

    void anErrorGoesWithTheNextFetchAndWithClear() {
        QFETCH_GLOBAL(bool, isJira);
        Scene scene(isJira);
        scene.fetch(scene.bad);
        QVERIFY(scene.shows(scene.failure));
        scene.begin(scene.good);
        QVERIFY(!scene.shows(scene.failure)); // while it is under way
        scene.dispatch->drain();
        scene.fetch(scene.bad);
        QTest::mouseClick(scene.clear(), Qt::LeftButton);
        QVERIFY(!scene.shows(scene.failure));
        QVERIFY(scene.shows(scene.sample));
        QVERIFY(scene.clear()->isHidden());
    }

    void eachProductIsAskedWithItsOwnToken() {
        QFETCH_GLOBAL(bool, isJira);
        Scene scene(isJira);
        scene.fetch(scene.good);
        QCOMPARE(scene.urlSession->requests.size(), 1);
        const QByteArray account = isJira ? "ann@h.example:jira-token" : "ann@h.example:page-token";
        const std::pair<QByteArray, QByteArray> wanted{"Authorization",
                                                       "Basic " + account.toBase64()};
        QVERIFY(scene.urlSession->requests[0].headers.contains(wanted));
        QVERIFY(scene.urlSession->requests[0].url.path().startsWith(isJira ? "/ex/jira"
                                                                           : "/ex/confluence"));
    }

    void theErrorAndTheTextCanBeSelected() {
        QFETCH_GLOBAL(bool, isJira);
        Scene scene(isJira);
        scene.fetch(scene.bad);
        QStringList selected;
        for (auto *label : scene.view->findChildren<SelectableLabel *>()) {
            QVERIFY(label->isVisible() && label->focusPolicy() == Qt::StrongFocus);
            label->selectAll();
            selected.append(label->selectedText());
        }
        QCOMPARE(selected.size(), 2);
        QVERIFY(selected.contains(scene.failure));
    }
};

QTEST_MAIN(TestPreview)
#include "test_preferences_preview.moc"
