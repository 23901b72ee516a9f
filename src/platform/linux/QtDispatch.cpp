#include "platform/linux/QtDispatch.h"

#include <QSemaphore>
#include <QThread>
#include <QTimer>

#include <thread>

namespace {

class QtSemaphore : public Semaphore {
public:
    void signal() override { m_semaphore.release(); }
    bool wait(std::chrono::milliseconds timeout) override {
        return m_semaphore.tryAcquire(1, static_cast<int>(timeout.count()));
    }

private:
    QSemaphore m_semaphore;
};

} // namespace

QtDispatch::QtDispatch() {
    // Room for a fetch, a probe and a paste at once, each of which may block for seconds.
    m_pool.setMaxThreadCount(4);
}

QtDispatch::~QtDispatch() {
    m_pool.waitForDone();
}

bool QtDispatch::isMainThread() const {
    return QThread::currentThread() == m_mainContext.thread();
}

void QtDispatch::toMain(Task task) {
    QMetaObject::invokeMethod(&m_mainContext, std::move(task), Qt::QueuedConnection);
}

void QtDispatch::toBackground(Task task) {
    m_pool.start(std::move(task));
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

Dispatch::Clock::time_point QtDispatch::now() const {
    return Clock::now();
}

QDateTime QtDispatch::wallTime() const {
    return QDateTime::currentDateTime();
}

void QtDispatch::sleepUntil(Clock::time_point time) {
    std::this_thread::sleep_until(time);
}

std::shared_ptr<Semaphore> QtDispatch::makeSemaphore() {
    return std::make_shared<QtSemaphore>();
}
