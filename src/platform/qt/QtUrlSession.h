#pragma once

#include "platform/UrlSession.h"
#include "platform/qt/WorkQueue.h"

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
    QtUrlSession();
    ~QtUrlSession() override;

    TaskId start(const UrlRequest &request, Completion completion) override;
    void cancel(TaskId task) override;
    void cancelAll() override;
    void warmUp() override;
    void prepareConnection(const QUrl &url) override;

protected:
    /// The request as Qt sends it. Tests lead it to a server of their own here.
    virtual QNetworkRequest networkRequest(const UrlRequest &request) const;

private:
    class Task;

    QNetworkAccessManager &manager();
    /// Runs `work` on the thread; false when the session has ended.
    bool onThread(std::function<void()> work);
    bool onThreadLocked(std::function<void()> work);
    /// Hands `response` to whoever waits for it, once.
    void answer(TaskId id, const UrlResponse &response);
    /// The last that the thread does.
    void leaveThread();

    QThread m_thread;
    WorkQueue m_context;                              ///< lives on the thread
    std::unique_ptr<QNetworkAccessManager> m_manager; ///< lives on the thread
    QHash<TaskId, Task *> m_tasks;                    ///< for the thread alone

    std::mutex m_mutex; ///< guards what follows
    QHash<TaskId, Completion> m_waiting;
    TaskId m_lastTask = 0;
    bool m_hasEnded = false;

    std::atomic<bool> m_isWarm = false;
};
