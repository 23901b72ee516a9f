#include "platform/linux/SecretServiceStore.h"

#include "platform/linux/SecretServiceState.h"

#include <condition_variable>
#include <deque>
#include <mutex>

using SecretServiceCalls::Patience;

namespace {

/// How long the end of the program waits for the thread. Every call ends at once when cancelled, as
/// far as the library keeps to it.
constexpr std::chrono::milliseconds forThread(100);

} // namespace

struct SecretServiceStore::Request {
    enum class Kind { Add, Copy, Remove };
    Kind kind;
    SecretServiceCalls::Item item;
    QByteArray secret;
    quint64 number = 0;
};

/// The thread and the queue of requests to it. Outlives the store if a call can't be ended.
class SecretServiceStore::Worker : public std::enable_shared_from_this<Worker> {
public:
    Worker(SecretServiceStore &store, std::shared_ptr<Dispatch> dispatch,
           const SecretServiceCalls::Limits &limits)
        : m_dispatch(std::move(dispatch)), m_limits(limits), m_store(&store) {}

    void add(Request request) {
        {
            const std::scoped_lock lock(m_mutex);
            m_requests.push_back(std::move(request));
        }
        m_changed.notify_all();
    }

    void cancel() {
        {
            const std::scoped_lock lock(m_mutex);
            m_store = nullptr;
            if (m_patience)
                m_patience->end();
        }
        m_changed.notify_all();
    }

    /// After cancel(): whether the thread came to its end in time.
    bool hasEnded(std::chrono::milliseconds timeout) {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, timeout, [this] { return m_hasEnded; });
    }

    void run() {
        while (const auto request = next())
            perform(*request);
        {
            const std::scoped_lock lock(m_mutex);
            m_hasEnded = true;
        }
        m_changed.notify_all();
    }

private:
    /// Nothing when cancelled.
    std::optional<Request> next() {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return !m_store || !m_requests.empty(); });
        if (!m_store)
            return std::nullopt;
        Request request = std::move(m_requests.front());
        m_requests.pop_front();
        return request;
    }

    void perform(const Request &request) {
        Patience patience(m_limits, [this, number = request.number] {
            post([number](SecretServiceStore &store) { store.asksUser(number); });
        });
        if (!begin(&patience))
            return;
        const Answer answer = answerTo(request, patience);
        begin(nullptr);
        post([number = request.number, answer](SecretServiceStore &store) {
            store.answered(number, answer);
        });
    }

    static Answer answerTo(const Request &request, Patience &patience) {
        switch (request.kind) {
        case Request::Kind::Add:
            return {SecretServiceCalls::add(request.item, request.secret, patience), {}};
        case Request::Kind::Copy:
            return SecretServiceCalls::copy(request.item, patience);
        case Request::Kind::Remove:
            return {SecretServiceCalls::remove(request.item, patience), {}};
        }
        return {};
    }

    /// False when cancelled.
    bool begin(Patience *patience) {
        const std::scoped_lock lock(m_mutex);
        m_patience = m_store ? patience : nullptr;
        return m_store;
    }

    void post(std::function<void(SecretServiceStore &)> news) {
        m_dispatch->toMain([self = shared_from_this(), news = std::move(news)] {
            if (SecretServiceStore *store = self->store())
                news(*store);
        });
    }

    /// Only the main thread, on which it is cancelled, may use it.
    SecretServiceStore *store() {
        const std::scoped_lock lock(m_mutex);
        return m_store;
    }

    const std::shared_ptr<Dispatch> m_dispatch;
    const SecretServiceCalls::Limits m_limits;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Request> m_requests;
    Patience *m_patience = nullptr; ///< of the request under way
    SecretServiceStore *m_store;    ///< none when cancelled
    bool m_hasEnded = false;
};

SecretServiceStore::SecretServiceStore(std::shared_ptr<Dispatch> dispatch,
                                       const SecretServiceCalls::Limits &limits)
    : m_dispatch(std::move(dispatch)), m_limits(limits) {}

SecretServiceStore::~SecretServiceStore() {
    cancelAll();
    if (!m_thread.joinable())
        return;
    if (m_worker->hasEnded(forThread))
        m_thread.join();
    else
        m_thread.detach();
}

void SecretServiceStore::add(const QString &service, const QString &account,
                             const QByteArray &secret, std::function<void(Outcome)> done) {
    ask({Request::Kind::Add, {service, account}, secret},
        {[done = std::move(done)](const Answer &answer) { done(answer.outcome); }, {}});
}

void SecretServiceStore::copy(const QString &service, const QString &account,
                              std::function<void(const Answer &)> done,
                              std::function<void()> waitsForUser) {
    ask({Request::Kind::Copy, {service, account}, {}}, {std::move(done), std::move(waitsForUser)});
}

void SecretServiceStore::remove(const QString &service, const QString &account,
                                std::function<void(Outcome)> done) {
    ask({Request::Kind::Remove, {service, account}, {}},
        {[done = std::move(done)](const Answer &answer) { done(answer.outcome); }, {}});
}

void SecretServiceStore::cancelAll() {
    m_isCancelled = true;
    m_waiting.clear();
    if (m_worker)
        m_worker->cancel();
}

void SecretServiceStore::ask(Request request, Waiting waiting) {
    if (m_isCancelled)
        return;
    if (!m_worker) {
        m_worker = std::make_shared<Worker>(*this, m_dispatch, m_limits);
        m_thread = std::thread([worker = m_worker] { worker->run(); });
    }
    request.number = ++m_lastNumber;
    m_waiting.emplace(request.number, std::move(waiting));
    m_worker->add(std::move(request));
}

void SecretServiceStore::asksUser(quint64 number) {
    const auto waiting = m_waiting.find(number);
    if (waiting != m_waiting.end() && waiting->second.waitsForUser)
        // A copy: whoever is called may give everything up.
        std::function<void()>(waiting->second.waitsForUser)();
}

void SecretServiceStore::answered(quint64 number, const Answer &answer) {
    auto waiting = m_waiting.extract(number);
    if (waiting)
        waiting.mapped().done(answer);
}

void SecretServiceStore::findState(std::function<void(State)> done) {
    SecretServiceState::find(std::move(done));
}
