#include "enrichment/TitleFetch.h"

#include "clients/TokenRequest.h"
#include "desktop/Access.h"
#include "desktop/CurrentRun.h"
#include "storage/LogStore.h"

namespace {

/// The end of a run without a token. Who has no keyring is told what would be one.
void giveUpWithout(const Keychain::TokenAnswer &token, const TitleFetch &fetch) {
    log(QStringLiteral("enrich: no %1 token configured").arg(fetch.product));
    Run::giveUp();
    Run::openPreferences();
    if (token.outcome != Keychain::Outcome::Unavailable) {
        Run::tell(fetch.tokenMessage);
        return;
    }
    Platform::current().secretStore->findState([fetch](SecretStore::State state) {
        Run::tell(state == SecretStore::State::None ? Access::keyringProblem()
                                                    : fetch.tokenMessage);
    });
}

} // namespace

void TitleFetch::start(const Run &run) const {
    const SiteAccess site = SiteAccess::configured();
    if (site.email.isEmpty()) {
        Run::giveUp(QStringLiteral("enrich: no email configured"),
                    QStringLiteral("Email not set. Open Preferences."));
        Run::openPreferences();
        return;
    }
    Platform::current().urlSession->warmUp();
    CurrentRun::enter(RunPhase::AskingKeyring);
    const auto current = std::make_shared<Run>(run); // asking may make it one that only copies
    TokenRequest::Steps steps;
    steps.withoutToken = [fetch = *this](const Keychain::TokenAnswer &answer) {
        giveUpWithout(answer, fetch);
    };
    steps.maySend = [current](const Keychain::TokenAnswer &) {
        const bool mayGoOn = current->mayGoOn();
        if (!mayGoOn)
            Run::giveUp();
        return mayGoOn;
    };
    steps.send = [send = send, current, site](const QString &token) {
        send(*current, site.withToken(token));
    };
    // The request is under way while the icon is drawn.
    steps.sent = [] { CurrentRun::enter(RunPhase::Fetching); };
    steps.waitsForUser = [] {
        CurrentRun::enter(RunPhase::WaitingForKeyring);
        Run::tell(QStringLiteral("Keychain is waiting for its password."));
    };
    TokenRequest::start(account, steps);
}
