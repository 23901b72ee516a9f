#pragma once

#include "platform/portal/PortalConnection.h"

#include <QPointer>

#include <memory>
#include <optional>

/// A question to the portal whose answer comes apart from the call, perhaps after a dialog with the
/// user. Main thread.
class PortalRequest : public QObject {
    Q_OBJECT

public:
    struct Answer {
        enum class Code {
            Given,
            Cancelled, ///< by the user
            Ended,     ///< in some other way
            Silent,    ///< nobody answered in time
            Failed,    ///< the portal took no such question, or has gone
        };

        Code code = Code::Failed;
        QVariantMap results;
        QString problem; ///< only with Failed
    };
    using Done = std::function<void(const Answer &)>;
    /// Nothing: as long as the user likes.
    using Limit = std::optional<std::chrono::milliseconds>;

    struct Question {
        QString interface;
        QString method;
        QVariantList arguments; ///< but for the last, the options
        QVariantMap options;
        Limit limit;
    };

    /// Asks. `done` is called once, later than this.
    PortalRequest(std::shared_ptr<PortalConnection> portal, const Question &question, Done done);
    /// Withdraws a question that is not answered, with its dialog.
    ~PortalRequest() override;

private Q_SLOTS:
    void responded(uint code, const QVariantMap &results);

private:
    void answer(const Answer &answer);

    std::shared_ptr<PortalConnection> m_portal;
    PortalConnection::Handle m_handle;
    Done m_done;
};
