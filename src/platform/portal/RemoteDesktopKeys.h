#pragma once

#include "platform/Dispatch.h"
#include "platform/PasteKeys.h"
#include "platform/linux/HeldKeys.h"
#include "platform/portal/RemoteDesktopGrant.h"
#include "platform/portal/RemoteDesktopSession.h"

#include <QPointer>

/// Keys through the portal's RemoteDesktop. The desktop asks the user when requestAccess() is
/// called, and at no other time. What it gives for the answer opens a session for each paste; where
/// it gives nothing, the session itself is kept. While one is open the desktop shows that.
class RemoteDesktopKeys : public QObject, public PasteKeys {
    Q_OBJECT

public:
    struct Tools {
        std::shared_ptr<PortalConnection> portal;
        std::shared_ptr<SecretStore> secrets;
        std::shared_ptr<Dispatch> dispatch;
        std::shared_ptr<HeldKeys> heldKeys;
        /// Whether the key that types V on a US keyboard does so in each of the user's layouts that
        /// have the letter. Empty where nobody knows, which counts as yes.
        std::function<bool()> vIsInItsPlace;
    };

    explicit RemoteDesktopKeys(const Tools &tools);
    ~RemoteDesktopKeys() override;

    /// Ready until the desktop has said otherwise: a paste waits for that.
    PasteAccess access() const override;
    void whenAccessKnown(std::function<void()> known) override { m_grant.whenKnown(known); }
    void onAccessChange(std::function<void()> changed) override;
    void requestAccess(std::function<void(const PasteAccess &)> done) override;
    std::optional<KeyLayout> layout() override;
    void prepare() override;
    void settle(std::function<void()> done) override;
    void press(const PasteChord &chord, std::function<void(bool)> done) override;
    std::optional<ScriptedPaste> scriptedPaste() const override;

private:
    using Outcome = RemoteDesktopSession::Outcome;

    void withSession(std::function<void(bool isOpen)> then);
    void open(PortalRequest::Limit limit);
    void opened(const Outcome &outcome);
    QString hindranceAfter(const Outcome &outcome) const;
    void ended(PortalSession::End how);
    void type(const PasteChord &chord, const std::function<void(bool)> &done);
    void tap(int evdevCode);
    void close();
    void closeIfUnused();
    void setHindrance(const QString &hindrance);

    Tools m_tools;
    RemoteDesktopGrant m_grant;
    QString m_hindrance; ///< why no session is opened until the user is asked again
    std::unique_ptr<RemoteDesktopSession> m_session; ///< open, or being opened
    bool m_isOpen = false;
    bool m_isKept = false; ///< beyond one paste, since no other could be opened without a question
    std::vector<std::function<void(bool)>> m_waiting;               ///< for the session
    std::vector<std::function<void(const PasteAccess &)>> m_asking; ///< while the user is asked
    std::function<void()> m_accessChanged;
    WorkItem m_unused;
};
