#include "platform/portal/RemoteDesktopGrant.h"

#include "model/AppInfo.h"
#include "platform/portal/RemoteDesktopSession.h"

#include <QPointer>

#include <utility>

namespace {

const QString account = QStringLiteral("remote-desktop-restore-token");

constexpr uint versionWithTokens = 2;

/// A keyring that waits for its password holds nothing else up.
constexpr std::chrono::seconds longestWait{2};

} // namespace

RemoteDesktopGrant::RemoteDesktopGrant(std::shared_ptr<PortalConnection> portal,
                                       std::shared_ptr<SecretStore> secrets,
                                       std::shared_ptr<Dispatch> dispatch)
    : m_portal(std::move(portal)), m_secrets(std::move(secrets)), m_dispatch(std::move(dispatch)) {
    connect(m_portal.get(), &PortalConnection::appeared, this, [this] {
        if (!m_problem.isEmpty())
            learn();
    });
    m_dispatch->toMain([self = QPointer(this)] {
        if (self)
            self->learn();
    });
}

void RemoteDesktopGrant::learn() {
    const auto answered = [self = QPointer(this)](const QVariant &version, const QString &problem) {
        if (!self)
            return;
        self->m_version = version.toUInt();
        if (problem.isEmpty())
            self->learnDevices();
        else
            self->learned(problem);
    };
    m_portal->property(RemoteDesktopSession::interfaceName(), QStringLiteral("version"), answered);
}

void RemoteDesktopGrant::learnDevices() {
    const auto answered = [self = QPointer(this)](const QVariant &types, const QString &problem) {
        if (!self)
            return;
        if (!problem.isEmpty())
            self->learned(problem);
        else if (!(types.toUInt() & RemoteDesktopSession::keyboard))
            self->learned(QStringLiteral("the desktop's portal offers no keyboard"));
        else if (self->givesTokens())
            self->learnToken();
        else
            self->learned({});
    };
    m_portal->property(RemoteDesktopSession::interfaceName(),
                       QStringLiteral("AvailableDeviceTypes"), answered);
}

void RemoteDesktopGrant::learnToken() {
    m_secrets->copy(AppInfo::keychainService(), account,
                    [self = QPointer(this)](const SecretStore::Answer &answer) {
                        if (!self)
                            return;
                        if (self->m_token.isEmpty()) { // else the user has just been asked
                            self->m_token = QString::fromUtf8(answer.secret);
                            self->m_isStored = true;
                        }
                        self->learned({});
                    });
}

void RemoteDesktopGrant::learned(const QString &problem) {
    m_isKnown = true;
    m_problem = problem;
    Q_EMIT changed();
    for (const auto &then : std::exchange(m_waiting, {}))
        then();
}

void RemoteDesktopGrant::whenKnown(std::function<void()> then) {
    if (m_isKnown) {
        then();
        return;
    }
    m_waiting.push_back(std::move(then));
    if (m_waiting.size() > 1)
        return;
    m_dispatch->after(longestWait, [self = QPointer(this)] {
        if (self && !self->m_isKnown)
            self->learned(QStringLiteral("the desktop has not answered yet"));
    });
}

bool RemoteDesktopGrant::givesTokens() const {
    return m_version >= versionWithTokens;
}

/// Without a keyring it is good until the program ends.
void RemoteDesktopGrant::keep(const QString &token) {
    if (m_token == token && m_isStored)
        return;
    m_token = token;
    m_isStored = false;
    m_secrets->add(AppInfo::keychainService(), account, token.toUtf8(),
                   [self = QPointer(this), token](SecretStore::Outcome outcome) {
                       if (self && self->m_token == token)
                           self->m_isStored = outcome == SecretStore::Outcome::Done;
                   });
}

void RemoteDesktopGrant::forget() {
    if (m_token.isEmpty())
        return;
    m_token.clear();
    m_secrets->remove(AppInfo::keychainService(), account, [](SecretStore::Outcome) {});
}
