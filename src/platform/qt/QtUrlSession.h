#pragma once

#include "platform/UrlSession.h"
#include "platform/qt/TaskQueue.h"

#include <QHash>
#include <QNetworkRequest>
#include <QObject>
#include <QThread>

#include <atomic>
#include <memory>
#include <mutex>

class QNetworkAccessManager;

/// Qt Network on a thread of its own. Nothing is loaded before the first use.
class QtUrlSession : public UrlSession {
public:
    /// Changes a request before it is sent, on the session's thread.
    using Adapt = std::function<void(QNetworkRequest &)>;

    /// Tests lead requests to a server of their own with `adapt`.
    explicit QtUrlSession(Adapt adapt = {});
    ~QtUrlSession() override;

    TaskId start(const UrlRequest &request, Completion completion) override;
    void cancel(TaskId task) override;
    void cancelAll() override;
    void warmUp() override;
    void prepareConnection(const QUrl &url) override;

private:
    class Task;

    QNetworkAccessManager &manager();
    /// The request as Qt sends it.
    QNetworkRequest networkRequest(const UrlRequest &request) const;
    void send(TaskId id, const UrlRequest &request);
    /// Runs `work` on the thread; false when the session has ended.
    bool onThread(std::function<void()> work);
    bool onThreadLocked(std::function<void()> work);
    /// Hands `response` to whoever waits for it, once.
    void answer(TaskId id, const UrlResponse &response);
    /// The last that the thread does.
    void leaveThread();

    Adapt m_adapt;
    QThread m_thread;
    TaskQueue m_context;                              ///< lives on the thread
    std::unique_ptr<QNetworkAccessManager> m_manager; ///< lives on the thread
    QHash<TaskId, Task *> m_tasks;                    ///< for the thread alone

    std::mutex m_mutex; ///< guards what follows
    QHash<TaskId, Completion> m_waiting;
    TaskId m_lastTask = 0;
    bool m_hasEnded = false;

    std::atomic<bool> m_isWarm = false;
};
