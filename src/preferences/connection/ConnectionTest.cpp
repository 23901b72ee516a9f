#include "preferences/connection/ConnectionTest.h"

#include "clients/ConfluenceClient.h"
#include "clients/JiraClient.h"
#include "desktop/AppDelegate.h"
#include "model/Text.h"
#include "platform/Platform.h"
#include "storage/Keychain.h"
#include "storage/Settings.h"

#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// What differs between the products.
struct Words {
    QString account;
    QString saved;
    QString refused;
    QString cleared;
    QString noToken;
    QString probeFailed;
    QString connectedTo;
};

const Words &words(ConnectionTest::Product product) {
    static const Words jira{AppInfo::keychainAccount(),
                            u"Token saved to Keychain."_s,
                            u"Failed to save token to Keychain."_s,
                            u"Token cleared."_s,
                            u"Set your API token first."_s,
                            u"Token probe failed."_s,
                            u"Connected to "_s};
    static const Words confluence{AppInfo::keychainAccountConfluence(),
                                  u"Confluence token saved to Keychain."_s,
                                  u"Failed to save Confluence token to Keychain."_s,
                                  u"Confluence token cleared."_s,
                                  u"Set your Confluence API token first."_s,
                                  u"Confluence token probe failed."_s,
                                  u"Connected to Confluence on "_s};
    return product == ConnectionTest::Product::Jira ? jira : confluence;
}

/// How an attempt on a site ended.
struct Attempt {
    QString message;
    std::optional<QString> cloudId; ///< present exactly when it went well
};

/// Blocks for up to two requests.
Attempt attempt(ConnectionTest::Product product, const QString &baseURL, const QString &email,
                const QString &token) {
    const Words &texts = words(product);
    const auto found = JiraClient::discoverResource(baseURL, token);
    if (!found.resource)
        return {found.error.value_or(u"Couldn't reach %1."_s.arg(baseURL)), {}};
    const QString &cloudId = found.resource->cloudId;
    bool ok = false;
    std::optional<QString> error;
    if (product == ConnectionTest::Product::Jira) {
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

} // namespace

ConnectionTest::ConnectionTest(Product product, QObject *parent)
    : QObject(parent), m_product(product) {
    enqueue([this, account = words(product).account] {
        const QString token = Keychain::loadToken(account).value_or(QString());
        return [this, token] {
            m_isLoaded = true;
            Q_EMIT tokenLoaded(token);
            Q_EMIT changed();
        };
    });
}

void ConnectionTest::save(const QString &text) {
    const int action = ++m_actions;
    enqueue([this, action, token = Text::trimmed(text), account = words(m_product).account] {
        const Outcome outcome = store(token, account);
        return [this, action, outcome] {
            stored(outcome);
            if (action != m_actions)
                return;
            const Words &texts = words(m_product);
            tell(outcome == Outcome::Saved     ? texts.saved
                 : outcome == Outcome::Refused ? texts.refused
                                               : texts.cleared,
                 outcome == Outcome::Refused);
        };
    });
}

void ConnectionTest::test(const QString &text) {
    ++m_actions;
    const Site site{Settings::shared().baseURL(), Settings::shared().email()};
    if (site.email.isEmpty())
        tell(u"Set your Atlassian email first."_s, true);
    else
        tell(u"Testing…"_s, false, true);
    enqueue([this, site, token = Text::trimmed(text), account = words(m_product).account] {
        const Outcome outcome = store(token, account);
        const auto usable = Keychain::loadToken(account);
        return [this, site, outcome, usable] {
            stored(outcome);
            if (site.email.isEmpty())
                return;
            if (!usable || usable->isEmpty())
                tell(words(m_product).noToken, true);
            else
                probe(site, *usable);
        };
    });
}

void ConnectionTest::tell(const QString &message, bool isError, bool isTesting) {
    m_message = message;
    m_isError = isError;
    m_isTesting = isTesting;
    Q_EMIT changed();
}

void ConnectionTest::enqueue(KeyringTask task) {
    m_keyringTasks.push_back(std::move(task));
    if (m_keyringTasks.size() == 1)
        runNextTask();
}

void ConnectionTest::runNextTask() {
    Platform::current().dispatch->toBackground(
        [self = QPointer(this), task = m_keyringTasks.front()] {
            Platform::current().dispatch->toMain([self, finish = task()] {
                if (!self)
                    return;
                self->m_keyringTasks.pop_front();
                if (!self->m_keyringTasks.empty())
                    self->runNextTask();
                finish();
            });
        });
}

ConnectionTest::Outcome ConnectionTest::store(const QString &token, const QString &account) {
    if (token.isEmpty()) {
        Keychain::deleteToken(account);
        return Outcome::Cleared;
    }
    return Keychain::saveToken(token, account) ? Outcome::Saved : Outcome::Refused;
}

void ConnectionTest::stored(Outcome outcome) {
    if (m_product != Product::Jira)
        return;
    if (outcome == Outcome::Saved)
        Settings::shared().tokenSavedAt = Platform::current().dispatch->wallTime();
    else if (outcome == Outcome::Cleared)
        Settings::shared().tokenSavedAt = std::nullopt;
    // The icon tells of an old token.
    if (AppDelegate *app = AppDelegate::shared())
        app->refreshStatusItemImage();
}

void ConnectionTest::probe(const Site &site, const QString &token) {
    Platform::current().dispatch->toBackground(
        [self = QPointer(this), product = m_product, site, token] {
            const Attempt result = attempt(product, site.baseURL, site.email, token);
            Platform::current().dispatch->toMain([self, result, baseURL = site.baseURL] {
                if (!self)
                    return;
                if (result.cloudId)
                    CloudId::keep(*result.cloudId, baseURL);
                self->tell(result.message, !result.cloudId);
            });
        });
}
