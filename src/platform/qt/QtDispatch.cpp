#include "platform/qt/QtDispatch.h"

#include <QSocketNotifier>
#include <QThread>
#include <QTimer>

#include <condition_variable>

#include <sys/timerfd.h>
#include <unistd.h>

namespace {

class CountingSemaphore : public Semaphore {
public:
    void signal() override {
        {
            const std::scoped_lock lock(m_mutex);
            ++m_count;
        }
        m_signalled.notify_one();
    }
    bool wait(std::chrono::milliseconds timeout) override {
        std::unique_lock lock(m_mutex);
        if (!m_signalled.wait_for(lock, timeout, [this] { return m_count > 0; }))
            return false;
        --m_count;
        return true;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_signalled;
    int m_count = 0;
};

/// A timer of the kernel's, which wakes up within microseconds of its time. Deletes itself once it
/// has run.
class ExactTimer : public QObject {
public:
    ExactTimer(Dispatch::Clock::time_point time, std::shared_ptr<bool> cancelled,
               Dispatch::Task task, QObject *parent)
        : QObject(parent),
          m_descriptor(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)),
          m_notifier(m_descriptor, QSocketNotifier::Read) {
        const auto since = time.time_since_epoch();
        const auto seconds = std::chrono::floor<std::chrono::seconds>(since);
        const std::chrono::nanoseconds rest = since - seconds;
        const itimerspec setting{{}, {seconds.count(), rest.count()}};
        timerfd_settime(m_descriptor, TFD_TIMER_ABSTIME, &setting, nullptr);
        connect(&m_notifier, &QSocketNotifier::activated, this,
                [this, cancelled = std::move(cancelled), task = std::move(task)] {
                    m_notifier.setEnabled(false);
                    deleteLater();
                    if (!*cancelled)
                        task();
                });
    }
    ~ExactTimer() override {
        m_notifier.setEnabled(false);
        close(m_descriptor);
    }

private:
    int m_descriptor;
    QSocketNotifier m_notifier;
};

} // namespace

QtDispatch::QtDispatch() {
    // Room for a fetch, a probe and a paste at once, each of which may block for seconds.
    m_pool.setMaxThreadCount(4);
}

QtDispatch::~QtDispatch() {
    finish();
}

void QtDispatch::finish() {
    {
        const std::scoped_lock lock(m_mutex);
        m_isFinished = true;
        m_background.clear();
    }
    m_pool.waitForDone();
    // What the tasks did comes before what follows, which the pool's own end does not say aloud.
    const std::scoped_lock lock(m_mutex);
}

bool QtDispatch::isMainThread() const {
    return QThread::currentThread() == m_mainContext.thread();
}

void QtDispatch::toMain(Task task) {
    m_mainContext.post(std::move(task));
}

void QtDispatch::toBackground(Task task) {
    {
        const std::scoped_lock lock(m_mutex);
        if (m_isFinished)
            return;
        m_background.push_back(std::move(task));
    }
    m_pool.start([this] { runFirstInBackground(); });
}

void QtDispatch::runFirstInBackground() {
    Task task;
    {
        const std::scoped_lock lock(m_mutex);
        if (m_background.empty())
            return;
        task = std::move(m_background.front());
        m_background.pop_front();
    }
    task();
    // What it carried goes on this thread, and before the pool counts as done.
    task = nullptr;
    const std::scoped_lock lock(m_mutex);
}

WorkItem QtDispatch::after(std::chrono::milliseconds delay, Task task) {
    auto cancelled = std::make_shared<bool>(false);
    QTimer::singleShot(delay, Qt::PreciseTimer, &m_mainContext,
                       [cancelled, task = std::move(task)] {
                           if (!*cancelled)
                               task();
                       });
    return WorkItem(cancelled);
}

WorkItem QtDispatch::at(Clock::time_point time, Task task) {
    auto cancelled = std::make_shared<bool>(false);
    new ExactTimer(time, cancelled, std::move(task), &m_mainContext);
    return WorkItem(cancelled);
}

Dispatch::Clock::time_point QtDispatch::now() const {
    return Clock::now();
}

QDateTime QtDispatch::wallTime() const {
    return QDateTime::currentDateTime();
}

std::shared_ptr<Semaphore> QtDispatch::makeSemaphore() {
    return std::make_shared<CountingSemaphore>();
}
