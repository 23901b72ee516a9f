#include "app/Doctor.h"
#include "clients/Gateway.h"
#include "desktop/Access.h"
#include "platform/Platform.h"
#include "storage/Settings.h"

using namespace Qt::StringLiterals;
using Mark = Finding::Mark;

namespace {

const auto trialService = u"org.ostrowind.brindle.doctor"_s;
const auto trialAccount = u"trial"_s;

void tellOfTray(bool isAvailable, const Doctor::Tell &tell) {
    if (isAvailable)
        tell({{}, Mark::Ok, u"a status area shows the icon"_s});
    else
        tell({{}, Mark::Note, u"nothing shows status icons"_s, Access::withoutTray()});
}

/// Writes a secret of its own, reads it and removes it again.
void tryKeyring(const Doctor::Tell &tell) {
    SecretStore &store = *Platform::current().secretStore;
    const QByteArray secret = "trial";
    const auto isRead = std::make_shared<bool>(false);
    store.add(trialService, trialAccount, secret, [](SecretStore::Outcome) {});
    store.copy(trialService, trialAccount, [isRead, secret](const SecretStore::Answer &answer) {
        *isRead = answer.outcome == SecretStore::Outcome::Done && answer.secret == secret;
    });
    store.remove(trialService, trialAccount, [isRead, tell](SecretStore::Outcome outcome) {
        if (*isRead && outcome == SecretStore::Outcome::Done)
            tell({{}, Mark::Ok, u"a secret was kept, read and removed"_s});
        else
            tell({{}, Mark::Note, u"it is there and keeps nothing"_s, Access::withoutKeyring()});
    });
}

/// Whether anything answers at `url`, which the report does not name.
void reach(const QUrl &url, const Doctor::Tell &tell) {
    Platform &platform = Platform::current();
    platform.urlSession->start(
        Gateway::anonymousRequest(url),
        [tell, host = url.host(), dispatch = platform.dispatch](const UrlResponse &response) {
            QString problem = response.transportError;
            problem.replace(host, u"the host"_s, Qt::CaseInsensitive);
            const Finding finding =
                response.httpStatus ? Finding{{}, Mark::Ok, u"it answers"_s}
                                    : Finding{{}, Mark::Note, u"it can't be reached: "_s + problem};
            dispatch->toMain([tell, finding] { tell(finding); });
        });
}

} // namespace

void Doctor::lookAtTray(const Tell &tell) {
    const auto host = Platform::current().trayHost;
    if (const auto isAvailable = host->isAvailable()) {
        tellOfTray(*isAvailable, tell);
        return;
    }
    // A running instance knows by then.
    host->onChange([tell, host = host.get()] {
        if (const auto isAvailable = host->isAvailable())
            tellOfTray(*isAvailable, tell);
    });
}

void Doctor::lookAtNotifications(const Tell &tell) {
    Platform::current().notifications->findServer(
        [tell](const QString &server, const QString &problem) {
            if (problem.isEmpty())
                tell({{}, Mark::Ok, server});
            else
                tell({{},
                      Mark::Note,
                      u"nobody shows them: "_s + problem,
                      u"Messages are in the activity log too: \"brindle log\"."_s});
        });
}

void Doctor::lookAtKeyring(const Tell &tell) {
    Platform::current().secretStore->findState([tell](SecretStore::State state) {
        switch (state) {
        case SecretStore::State::Ready:
            tryKeyring(tell);
            return;
        case SecretStore::State::Locked:
            tell({{}, Mark::Note, u"locked: it asks for its password when a title is fetched"_s});
            return;
        case SecretStore::State::Unmade:
            tell({{}, Mark::Note, u"empty: the first API token has you choose its password"_s});
            return;
        case SecretStore::State::Mute:
            tell({{}, Mark::Note, u"it does not answer"_s, Access::withoutKeyring()});
            return;
        case SecretStore::State::None:
            break;
        }
        tell({{}, Mark::Note, u"none: API tokens can't be kept"_s, Access::withoutKeyring()});
    });
}

void Doctor::lookAtLoginItem(const Tell &tell) {
    switch (Platform::current().loginItems->status()) {
    case LoginItems::Status::NotRegistered:
        tell({{}, Mark::Ok, u"Brindle does not start at login"_s});
        return;
    case LoginItems::Status::Enabled:
        tell({{}, Mark::Ok, u"Brindle starts at login"_s});
        return;
    case LoginItems::Status::RequiresApproval:
        tell({{}, Mark::Note, u"switched off by the desktop's own settings"_s});
        return;
    case LoginItems::Status::NotFound:
        break;
    }
    tell({{},
          Mark::Note,
          u"it names a program that is not there"_s,
          u"Switch it off and on again in the preferences, General."_s});
}

void Doctor::lookAtSettings(const Tell &tell) {
    if (Platform::current().defaults->isWritable())
        tell({{}, Mark::Ok, u"they can be written"_s});
    else
        tell({{},
              Mark::Note,
              u"they can't be written: what you choose lasts until Brindle quits"_s});
}

void Doctor::lookAtGateway(const Tell &tell) {
    reach(QUrl(Gateway::origin()), tell);
}

void Doctor::lookAtSite(const Tell &tell) {
    const auto site = Gateway::url(Settings::shared().baseURL());
    if (site)
        reach(*site, tell);
    else
        tell({{}, Mark::Note, u"no address is set"_s});
}
