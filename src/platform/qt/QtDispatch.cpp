#include "platform/qt/QtDispatch.h"

#include "platform/qt/HandOver.h"

#include <QSemaphore>
#include <QSocketNotifier>
#include <QThread>
#include <QTimer>

#include <sys/timerfd.h>
#include <unistd.h>

namespace {

class QtSemaphore : public Semaphore {
public:
    void signal() override {
        HandOver::give();
        m_semaphore.release();
    }
    bool wait(std::chrono::milliseconds timeout) override {
        const bool wasSignalled = m_semaphore.tryAcquire(1, static_cast<int>(timeout.count()));
        HandOver::take();
        return wasSignalled;
    }

private:
    QSemaphore m_semaphore;
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
    m_isFinished = true;
    m_pool.clear();
    m_pool.waitForDone();
}

bool QtDispatch::isMainThread() const {
    return QThread::currentThread() == m_mainContext.thread();
}

void QtDispatch::toMain(Task task) {
    m_mainContext.post(std::move(task));
}

void QtDispatch::toBackground(Task task) {
    if (m_isFinished)
        return;
    HandOver::give();
    m_pool.start([task = std::move(task)] {
        HandOver::take();
        task();
    });
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
    return std::make_shared<QtSemaphore>();
}
