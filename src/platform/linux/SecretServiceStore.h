#pragma once

#include "platform/Dispatch.h"
#include "platform/SecretStore.h"
#include "platform/linux/SecretServiceCalls.h"

#include <memory>
#include <thread>
#include <unordered_map>

/// The Secret Service of the desktop through libsecret, on a thread of its own that is made at the
/// first use. How long the service and the user may take is bounded.
class SecretServiceStore : public SecretStore {
public:
    explicit SecretServiceStore(std::shared_ptr<Dispatch> dispatch,
                                const SecretServiceCalls::Limits &limits = {});
    ~SecretServiceStore() override;

    void findState(std::function<void(State)> done) override;

    void add(const QString &service, const QString &account, const QByteArray &secret,
             std::function<void(Outcome)> done) override;
    void copy(const QString &service, const QString &account,
              std::function<void(const Answer &)> done,
              std::function<void()> waitsForUser) override;
    void remove(const QString &service, const QString &account,
                std::function<void(Outcome)> done) override;
    void cancelAll() override;

private:
    class Worker;
    struct Request;
    /// Who waits for a request. They stay on the main thread, only their number travels.
    struct Waiting {
        std::function<void(const Answer &)> done;
        std::function<void()> waitsForUser;
    };

    void ask(Request request, Waiting waiting);
    void asksUser(quint64 number);
    void answered(quint64 number, const Answer &answer);

    std::shared_ptr<Dispatch> m_dispatch;
    std::unordered_map<quint64, Waiting> m_waiting;
    quint64 m_lastNumber = 0;
    bool m_isCancelled = false;
    SecretServiceCalls::Limits m_limits;
    std::shared_ptr<Worker> m_worker;
    std::thread m_thread;
};
