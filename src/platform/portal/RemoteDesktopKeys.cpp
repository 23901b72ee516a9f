#include "platform/portal/RemoteDesktopKeys.h"

#include "platform/linux/KeyCodes.h"

#include <linux/input-event-codes.h>

#include <utility>

namespace {

/// With a token a session is open within a tenth of this. Who takes longer is showing a dialog,
/// which nobody has asked for.
constexpr std::chrono::milliseconds longestSilence{500};

/// A session that was opened for a paste that never came. The desktop goes on showing it for as
/// long anyway.
constexpr std::chrono::seconds longestUnused{5};

constexpr int keysymV = 0x76;
constexpr int x11Offset = 8; // X numbers keys by the kernel's code plus this

} // namespace

RemoteDesktopKeys::RemoteDesktopKeys(const Tools &tools)
    : m_tools(tools), m_grant(tools.portal, tools.secrets, tools.dispatch) {
    connect(&m_grant, &RemoteDesktopGrant::changed, this, [this] {
        if (m_accessChanged)
            m_accessChanged();
    });
}

RemoteDesktopKeys::~RemoteDesktopKeys() {
    m_unused.cancel();
}

PasteAccess RemoteDesktopKeys::access() const {
    using State = PasteAccess::State;
    if (!m_grant.isKnown() || m_isKept)
        return {};
    if (!m_grant.problem().isEmpty())
        return {State::Impossible, m_grant.problem()};
    const QString offer = m_grant.givesTokens() ? QStringLiteral("Ask for Permission")
                                                : QStringLiteral("Allow pasting until you log out");
    if (!m_hindrance.isEmpty())
        return {State::Impossible, m_hindrance, offer};
    if (!m_grant.token().isEmpty())
        return {};
    if (m_grant.givesTokens())
        return {State::NeedsConsent, QStringLiteral("not authorized by the desktop yet"), offer};
    return {State::Impossible, QStringLiteral("the desktop asks for it after each login"), offer};
}

void RemoteDesktopKeys::onAccessChange(std::function<void()> changed) {
    m_accessChanged = std::move(changed);
}

void RemoteDesktopKeys::setHindrance(const QString &hindrance) {
    m_hindrance = hindrance;
    if (m_accessChanged)
        m_accessChanged();
}

void RemoteDesktopKeys::requestAccess(std::function<void(const PasteAccess &)> done) {
    m_grant.whenKnown([self = QPointer(this), done = std::move(done)] {
        if (!self)
            return;
        const PasteAccess access = self->access();
        if (access.offer.isEmpty()) {
            done(access);
            return;
        }
        self->m_asking.push_back(done);
        if (self->m_asking.size() == 1)
            self->open({});
    });
}

void RemoteDesktopKeys::withSession(std::function<void(bool isOpen)> then) {
    m_grant.whenKnown([self = QPointer(this), then = std::move(then)] {
        if (!self)
            return;
        const bool mayOpen =
            self->m_asking.empty() && self->access().state == PasteAccess::State::Ready;
        if (self->m_isOpen || !mayOpen) {
            then(self->m_isOpen);
            return;
        }
        self->m_waiting.push_back(then);
        if (!self->m_session)
            self->open(longestSilence);
    });
}

void RemoteDesktopKeys::open(PortalRequest::Limit limit) {
    m_session = std::make_unique<RemoteDesktopSession>(m_tools.portal);
    connect(m_session.get(), &RemoteDesktopSession::ended, this, &RemoteDesktopKeys::ended);
    m_session->open({m_grant.token(), m_grant.givesTokens(), limit},
                    [this, session = m_session.get()](const Outcome &outcome) {
                        if (m_session.get() == session) // else it was closed meanwhile
                            opened(outcome);
                    });
}

void RemoteDesktopKeys::opened(const Outcome &outcome) {
    const bool wasAsked = !m_asking.empty();
    m_isOpen = outcome.kind == Outcome::Kind::Open;
    m_isKept = m_isOpen && outcome.restoreToken.isEmpty();
    if (m_isOpen && !m_isKept)
        m_grant.keep(outcome.restoreToken);
    else if (m_isKept || (wasAsked && outcome.kind == Outcome::Kind::Refused))
        m_grant.forget();
    if (!m_isOpen || (wasAsked && !m_isKept))
        close();
    setHindrance(hindranceAfter(outcome));
    for (const auto &then : std::exchange(m_waiting, {}))
        then(m_isOpen);
    for (const auto &done : std::exchange(m_asking, {}))
        done(access());
    closeIfUnused();
}

/// A portal that failed us while nobody was asked may do better at the next paste.
QString RemoteDesktopKeys::hindranceAfter(const Outcome &outcome) const {
    const bool wasAsked = !m_asking.empty();
    switch (outcome.kind) {
    case Outcome::Kind::Open:
        break;
    case Outcome::Kind::Failed:
        return wasAsked ? outcome.problem : QString();
    case Outcome::Kind::Refused:
        if (wasAsked)
            return QStringLiteral("you have not allowed it to press keys");
        [[fallthrough]];
    case Outcome::Kind::Silent:
        return QStringLiteral("it is not authorized to press keys any more");
    }
    return {};
}

void RemoteDesktopKeys::ended(PortalSession::End how) {
    if (!m_isOpen) { // the user has closed it instead of answering; a lost portal tells by itself
        if (how == PortalSession::End::Closed)
            opened({Outcome::Kind::Refused, {}, {}});
        return;
    }
    const bool wasKept = std::exchange(m_isKept, false);
    close();
    if (how == PortalSession::End::Closed)
        setHindrance(QStringLiteral("the permission to press keys was taken back"));
    else if (wasKept)
        setHindrance(
            QStringLiteral("the permission to press keys has ended with the desktop's portal"));
}

void RemoteDesktopKeys::close() {
    m_isOpen = false;
    m_unused.cancel();
    if (!m_session)
        return;
    m_session->disconnect(this);
    m_session.release()->deleteLater(); // it may be the one that calls
}

void RemoteDesktopKeys::closeIfUnused() {
    m_unused.cancel();
    if (m_isOpen && !m_isKept)
        m_unused = m_tools.dispatch->after(longestUnused, [this] { close(); });
}

std::optional<KeyLayout> RemoteDesktopKeys::layout() {
    return std::nullopt; // the keys go by the letter where its place is not certain
}

void RemoteDesktopKeys::prepare() {
    withSession([](bool) {});
}

void RemoteDesktopKeys::settle(std::function<void()> done) {
    if (access().state != PasteAccess::State::Ready) {
        done();
        return;
    }
    m_tools.heldKeys->await(
        [self = QPointer(this)](int evdevCode) {
            if (self)
                self->tap(evdevCode);
        },
        [self = QPointer(this), done = std::move(done)] {
            if (self)
                done();
        });
}

void RemoteDesktopKeys::tap(int evdevCode) {
    withSession([this, evdevCode](bool isOpen) {
        if (!isOpen)
            return;
        closeIfUnused();
        m_session->type({{false, evdevCode, true}, {false, evdevCode, false}}, [](bool) {});
    });
}

void RemoteDesktopKeys::press(const PasteChord &chord, std::function<void(bool)> done) {
    withSession([this, chord, done = std::move(done)](bool isOpen) {
        if (isOpen)
            type(chord, done);
        else
            done(false);
    });
}

void RemoteDesktopKeys::type(const PasteChord &chord, const std::function<void(bool)> &done) {
    using Stroke = RemoteDesktopSession::Stroke;
    const auto place = KeyCodes::x11FromVirtual(chord.vKey);
    if (!place) {
        done(false);
        return;
    }
    const bool byLetter = m_tools.vIsInItsPlace && !m_tools.vIsInItsPlace();
    QList<Stroke> strokes{{false, KEY_LEFTCTRL, true}};
    if (chord.withShift)
        strokes.append({false, KEY_LEFTSHIFT, true});
    strokes.append({byLetter, byLetter ? keysymV : *place - x11Offset, true});
    for (qsizetype i = strokes.size() - 1; i >= 0; --i)
        strokes.append({strokes[i].isKeysym, strokes[i].key, false});
    m_session->type(strokes, [self = QPointer(this), session = m_session.get(), done](bool typed) {
        if (!self)
            return;
        if (self->m_session.get() == session && !self->m_isKept)
            self->close();
        done(typed);
    });
}

std::optional<ScriptedPaste> RemoteDesktopKeys::scriptedPaste() const {
    return std::nullopt; // a program could do no more than this
}
