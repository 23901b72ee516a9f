#pragma once

#include "platform/UrlSession.h"
#include "platform/qt/WorkQueue.h"

#include <QHash>
#include <QNetworkRequest>
#include <QObject>
#include <QThread>

#include <atomic>
#include <memory>

class QNetworkAccessManager;

/// Qt Network on a thread of its own. Nothing is loaded before the first use.
class QtUrlSession : public UrlSession {
public:
    QtUrlSession();
    ~QtUrlSession() override;

    TaskId start(const UrlRequest &request, Completion completion) override;
    void cancel(TaskId task) override;
    void warmUp() override;
    void prepareConnection(const QUrl &url) override;

protected:
    /// The request as Qt sends it. Tests lead it to a server of their own here.
    virtual QNetworkRequest networkRequest(const UrlRequest &request) const;

private:
    class Task;

    QNetworkAccessManager &manager();
    void onThread(std::function<void()> work);
    void send(TaskId id, const UrlRequest &request, const Completion &completion);

    QThread m_thread;
    WorkQueue m_context; ///< lives on the thread
    std::unique_ptr<QNetworkAccessManager> m_manager;
    QHash<TaskId, Task *> m_tasks;
    std::atomic<TaskId> m_lastTask = 0;
    std::atomic<bool> m_isWarm = false;
};
