#pragma once

#include "platform/portal/PortalSession.h"

/// A session in which keys can be pressed for the user. Main thread.
class RemoteDesktopSession : public QObject {
    Q_OBJECT

public:
    static QString interfaceName();
    /// Among the types of devices, which are bits.
    static constexpr uint keyboard = 1;

    struct Wish {
        QString restoreToken; ///< of an earlier session; opens it without a dialog if it is good
        bool asksForToken = false;  ///< only portals from version 2 on give one
        PortalRequest::Limit limit; ///< how long the user may think about it
    };
    struct Outcome {
        enum class Kind {
            Open,
            Refused, ///< the user has said no, in one way or the other
            Silent,  ///< no answer in time: the user is being asked
            Failed,
        };
        Kind kind = Kind::Failed;
        QString restoreToken; ///< perhaps, when it is open
        QString problem;      ///< only with Failed
    };

    explicit RemoteDesktopSession(std::shared_ptr<PortalConnection> portal);

    /// `done` is called once, later than this; not any more once this object is gone.
    void open(const Wish &wish, std::function<void(const Outcome &)> done);

    struct Stroke {
        bool isKeysym = false; ///< else the kernel's code of a key
        int key = 0;
        bool isDown = false;
    };
    /// Presses and releases keys, one after the other; `done` gets whether the portal took them
    /// all.
    void type(const QList<Stroke> &strokes, std::function<void(bool)> done);

Q_SIGNALS:
    void ended(PortalSession::End how);

private:
    using Done = std::function<void(const Outcome &)>;
    void selectDevices(const Wish &wish, const Done &done);
    void start(const Wish &wish, const Done &done);

    PortalSession m_session;
};
