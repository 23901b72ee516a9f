#pragma once

#include "platform/Dispatch.h"
#include "platform/qt/TaskQueue.h"

#include <QThreadPool>

#include <deque>
#include <mutex>

/// Dispatch on the Qt event loop and a thread pool. Created on the main thread.
class QtDispatch : public Dispatch {
public:
    QtDispatch();
    ~QtDispatch() override;

    bool isMainThread() const override;
    void toMain(Task task) override;
    void toBackground(Task task) override;
    WorkItem after(std::chrono::milliseconds delay, Task task) override;
    WorkItem at(Clock::time_point time, Task task) override;
    Clock::time_point now() const override;
    QDateTime wallTime() const override;
    std::shared_ptr<Semaphore> makeSemaphore() override;
    void finish() override;

private:
    void runFirstInBackground();

    TaskQueue m_mainContext;
    QThreadPool m_pool;

    std::mutex m_mutex; ///< guards what follows
    std::deque<Task> m_background;
    bool m_isFinished = false;
};
