#include "preferences/connection/ConnectionTest.h"

#include "clients/ConfluenceClient.h"
#include "clients/JiraClient.h"
#include "clients/TokenRequest.h"
#include "desktop/AppDelegate.h"
#include "model/Text.h"
#include "platform/Platform.h"
#include "storage/Settings.h"

#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// What differs between the products.
struct Words {
    QString account;
    QString saved;
    QString notSaved;
    QString cleared;
    QString notCleared;
    QString notRead;
    QString noToken;
    QString probeFailed;
    QString connectedTo;
};

const Words &words(ConnectionTest::Product product) {
    static const Words jira{AppInfo::keychainAccount(),
                            u"Token saved to Keychain."_s,
                            u"Failed to save token to Keychain."_s,
                            u"Token cleared."_s,
                            u"Failed to clear token in Keychain."_s,
                            u"Failed to read token from Keychain."_s,
                            u"Set your API token first."_s,
                            u"Token probe failed."_s,
                            u"Connected to "_s};
    static const Words confluence{AppInfo::keychainAccountConfluence(),
                                  u"Confluence token saved to Keychain."_s,
                                  u"Failed to save Confluence token to Keychain."_s,
                                  u"Confluence token cleared."_s,
                                  u"Failed to clear Confluence token in Keychain."_s,
                                  u"Failed to read Confluence token from Keychain."_s,
                                  u"Set your Confluence API token first."_s,
                                  u"Confluence token probe failed."_s,
                                  u"Connected to Confluence on "_s};
    return product == ConnectionTest::Product::Jira ? jira : confluence;
}

bool couldBeRead(const Keychain::TokenAnswer &answer) {
    return answer.outcome == Keychain::Outcome::Done || answer.outcome == Keychain::Outcome::Absent;
}

/// Why it could not.
QString unreadable(ConnectionTest::Product product, const Keychain::TokenAnswer &answer) {
    return words(product).notRead +
           (answer.outcome == Keychain::Outcome::Refused ? u" It is still locked."_s : QString());
}

} // namespace

/// How an attempt on a site ended.
struct ConnectionTest::Attempt {
    QString message;
    std::optional<QString> cloudId; ///< present exactly when it went well
};

/// Blocks for up to two requests.
ConnectionTest::Attempt ConnectionTest::attempt(Product product, const QString &baseURL,
                                                const QString &email, const QString &token) {
    const Words &texts = words(product);
    const auto found = JiraClient::discoverResource(baseURL, token);
    if (!found.resource)
        return {found.error.value_or(u"Couldn't reach %1."_s.arg(baseURL)), {}};
    const QString &cloudId = found.resource->cloudId;
    bool ok = false;
    std::optional<QString> error;
    if (product == Product::Jira) {
        const auto probed = JiraClient::probeToken(cloudId, email, token);
        ok = probed.resource.has_value();
        error = probed.error;
    } else {
        const auto probed = ConfluenceClient::probeToken(cloudId, email, token);
        ok = probed.ok;
        error = probed.error;
    }
    if (!ok)
        return {error.value_or(texts.probeFailed), {}};
    return {texts.connectedTo + found.resource->siteName + u'.', cloudId};
}

ConnectionTest::ConnectionTest(Product product, QObject *parent)
    : QObject(parent), m_product(product) {
    enqueue([this] { load(); });
}

void ConnectionTest::load() {
    const auto loaded = [self = QPointer(this)](const Keychain::TokenAnswer &answer) {
        if (!self)
            return;
        self->endTask();
        self->m_isLoaded = true;
        self->learn(answer);
        self->tell(couldBeRead(answer) ? QString() : unreadable(self->m_product, answer),
                   !couldBeRead(answer));
    };
    const auto waitsForUser = [self = QPointer(this)] {
        if (self)
            self->tell(u"Keychain is waiting for its password."_s, false, true);
    };
    Keychain::loadToken(words(m_product).account, loaded, waitsForUser);
}

void ConnectionTest::save(const QString &text) {
    const int action = ++m_actions;
    enqueue([this, action, token = Text::trimmed(text)] {
        store(token, [this, action](const Stored &stored) {
            endTask();
            finishStoring(stored);
            if (action == m_actions)
                tell(description(stored), !stored.isDone);
        });
    });
}

void ConnectionTest::test(const QString &text) {
    ++m_actions;
    const Site site{Settings::shared().baseURL(), Settings::shared().email()};
    if (site.email.isEmpty())
        tell(u"Set your Atlassian email first."_s, true);
    else
        tell(u"Testing…"_s, false, true);
    enqueue([this, site, token = Text::trimmed(text)] {
        if (token.isEmpty() && !m_isRead) {
            tryStoredToken(site);
            return;
        }
        store(token, [this, site](const Stored &stored) {
            finishStoring(stored);
            if (stored.isDone || (!stored.isClearing && !stored.isLocked)) {
                tryStoredToken(site);
                return;
            }
            // What is in the keyring is not what was to be tried.
            endTask();
            if (!site.email.isEmpty())
                tell(description(stored), true);
        });
    });
}

void ConnectionTest::tell(const QString &message, bool isError, bool isBusy) {
    m_message = message;
    m_isError = isError;
    m_isBusy = isBusy;
    Q_EMIT changed();
}

QString ConnectionTest::description(const Stored &stored) const {
    const Words &texts = words(m_product);
    if (stored.isDone)
        return stored.isClearing ? texts.cleared : texts.saved;
    return (stored.isClearing ? texts.notCleared : texts.notSaved) +
           (stored.isLocked ? u" It is still locked; nothing was changed."_s : QString());
}

void ConnectionTest::enqueue(KeyringTask task) {
    m_keyringTasks.push_back(std::move(task));
    if (m_keyringTasks.size() == 1)
        m_keyringTasks.front()();
}

void ConnectionTest::endTask() {
    m_keyringTasks.pop_front();
    if (!m_keyringTasks.empty())
        m_keyringTasks.front()();
}

void ConnectionTest::store(const QString &token, const std::function<void(const Stored &)> &done) {
    const bool isClearing = token.isEmpty();
    const auto stored = [self = QPointer(this), isClearing, done](Keychain::Outcome outcome) {
        if (!self)
            return;
        const bool isGone = isClearing && outcome == Keychain::Outcome::Absent;
        done({isClearing, isGone || outcome == Keychain::Outcome::Done,
              outcome == Keychain::Outcome::Refused});
    };
    if (isClearing)
        Keychain::deleteToken(words(m_product).account, stored);
    else
        Keychain::saveToken(token, words(m_product).account, stored);
}

void ConnectionTest::finishStoring(const Stored &stored) {
    m_isRead = m_isRead || stored.isDone;
    if (m_product != Product::Jira)
        return;
    if (stored.isDone)
        Settings::shared().tokenSavedAt =
            stored.isClearing ? std::nullopt
                              : std::optional(Platform::current().dispatch->wallTime());
    // The icon tells of an old token.
    if (AppDelegate *app = AppDelegate::shared())
        app->refreshStatusItemImage();
}

void ConnectionTest::tryStoredToken(const Site &site) {
    const auto goesOn = [self = QPointer(this), site](const Keychain::TokenAnswer &answer) {
        if (!self)
            return false;
        self->endTask();
        self->learn(answer);
        return !site.email.isEmpty();
    };
    TokenRequest::Steps steps;
    steps.withoutToken = [this, goesOn](const Keychain::TokenAnswer &answer) {
        if (goesOn(answer))
            tell(couldBeRead(answer) ? words(m_product).noToken : unreadable(m_product, answer),
                 true);
    };
    steps.maySend = goesOn;
    steps.send = [product = m_product, site,
                  finish = TokenRequest::onMain([self = QPointer(this), site](const Attempt &made) {
                      if (self)
                          self->finishTest(made, site);
                  })](const QString &token) {
        finish(attempt(product, site.baseURL, site.email, token));
    };
    TokenRequest::start(words(m_product).account, steps);
}

void ConnectionTest::learn(const Keychain::TokenAnswer &answer) {
    if (m_isRead || !couldBeRead(answer))
        return;
    m_isRead = true;
    Q_EMIT tokenLoaded(answer.token);
}

void ConnectionTest::finishTest(const Attempt &made, const Site &site) {
    if (made.cloudId)
        CloudId::keep(*made.cloudId, site.baseURL);
    tell(made.message, !made.cloudId);
}
