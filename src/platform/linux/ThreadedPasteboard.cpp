#include "platform/linux/ThreadedPasteboard.h"

#include "platform/linux/FlavourNames.h"

#include <mutex>

namespace {

/// The longest that the end of the program waits for the clipboard to be taken over by its manager;
/// the server gives up earlier when nothing moves.
constexpr std::chrono::milliseconds longestFinish{3500};

QString noAnswer(std::chrono::milliseconds limit) {
    return QStringLiteral("it did not answer within %1 ms").arg(limit.count());
}

} // namespace

/// What both threads use.
struct ThreadedPasteboard::Shared {
    ClipboardServer *server = nullptr;        ///< the thread's
    std::promise<QString> problem;            ///< kept by the thread
    std::function<void()> changed;            ///< the main thread's
    bool isServed = false;                    ///< the main thread's: the server has answered
    std::vector<std::shared_ptr<Read>> early; ///< the main thread's: asked before that
    std::mutex mutex;                         ///< guards what follows
    PasteboardUse use;
    QString trouble; ///< why the server serves no longer
    bool newsIsPosted = false;
};

ThreadedPasteboard::ThreadedPasteboard(std::shared_ptr<Dispatch> dispatch, MakeServer make)
    : m_dispatch(std::move(dispatch)),
      m_shared(std::make_shared<Shared>()),
      m_problem(m_shared->problem.get_future()),
      m_thread([shared = m_shared, dispatch = m_dispatch, make = std::move(make)](int interrupt) {
          auto server = make(interrupt, [shared, dispatch](const PasteboardUse &use) {
              {
                  const std::scoped_lock lock(shared->mutex);
                  shared->use = use;
                  if (shared->server)
                      shared->trouble = shared->server->problem();
                  if (std::exchange(shared->newsIsPosted, true))
                      return;
              }
              dispatch->toMain([shared] {
                  {
                      const std::scoped_lock lock(shared->mutex);
                      shared->newsIsPosted = false;
                  }
                  // A copy, since it may set another one.
                  if (const auto changed = shared->changed)
                      changed();
              });
          });
          shared->server = server.get();
          shared->problem.set_value(server->problem());
          dispatch->toMain([shared, problem = server->problem()] {
              shared->isServed = true;
              shared->early.clear();
              const std::scoped_lock lock(shared->mutex);
              shared->trouble = problem;
          });
          return server;
      }) {}

ThreadedPasteboard::~ThreadedPasteboard() {
    m_shared->changed = nullptr;
}

QString ThreadedPasteboard::problem(std::chrono::milliseconds limit) {
    if (m_problem.wait_for(limit) != std::future_status::ready)
        return noAnswer(limit);
    return m_problem.get();
}

void ThreadedPasteboard::awaitServer(std::chrono::milliseconds limit) {
    m_dispatch->after(limit, [shared = m_shared, limit] {
        if (shared->isServed)
            return;
        {
            const std::scoped_lock lock(shared->mutex);
            shared->trouble = noAnswer(limit);
        }
        for (const auto &read : std::exchange(shared->early, {}))
            std::exchange(*read, nullptr)({});
    });
}

bool ThreadedPasteboard::hasAnswered() const {
    return !m_problem.valid() ||
           m_problem.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

QString ThreadedPasteboard::unavailableBecause() const {
    const std::scoped_lock lock(m_shared->mutex);
    return m_shared->trouble;
}

void ThreadedPasteboard::read(Read done) {
    const auto waiting = std::make_shared<Read>(std::move(done));
    if (!m_shared->isServed)
        m_shared->early.push_back(waiting);
    m_thread.post([shared = m_shared, dispatch = m_dispatch, waiting] {
        dispatch->toMain([waiting, contents = shared->server->read()] {
            if (const auto tell = std::exchange(*waiting, nullptr))
                tell(contents);
        });
    });
}

void ThreadedPasteboard::write(const QList<std::pair<PasteboardType, QByteArray>> &flavours,
                               std::optional<qint64> ifCountIs, Written done) {
    PasteboardItem contents;
    for (const auto &[type, data] : flavours)
        contents += FlavourNames::representations(type, data);
    own(contents, ifCountIs, std::move(done));
}

void ThreadedPasteboard::restore(const QList<PasteboardItem> &items,
                                 std::optional<qint64> ifCountIs, Written done) {
    // Linux desktops have one item; several, from another kind of desktop, can't come here.
    own(items.value(0), ifCountIs, std::move(done));
}

void ThreadedPasteboard::own(const PasteboardItem &contents, std::optional<qint64> ifCountIs,
                             Written done) {
    m_thread.post(
        [shared = m_shared, dispatch = m_dispatch, contents, ifCountIs, done = std::move(done)] {
            dispatch->toMain(
                [done, written = shared->server->own(contents, ifCountIs)] { done(written); });
        });
}

PasteboardUse ThreadedPasteboard::use() const {
    const std::scoped_lock lock(m_shared->mutex);
    return m_shared->use;
}

void ThreadedPasteboard::onUseChange(std::function<void()> changed) {
    m_shared->changed = std::move(changed);
}

void ThreadedPasteboard::finish(const QList<PasteboardItem> &original) {
    if (!hasAnswered()) // nothing was ever written
        return;
    const auto finished = std::make_shared<std::promise<void>>();
    m_thread.finishWith([shared = m_shared, original, finished] {
        ClipboardServer &server = *shared->server;
        if (!original.isEmpty() && server.holdsOurs())
            server.own(original.constFirst(), std::nullopt);
        if (server.holdsOurs())
            server.handOver();
        finished->set_value();
    });
    finished->get_future().wait_for(longestFinish);
}
