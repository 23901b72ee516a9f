#include "platform/qt/QtDispatch.h"

#include "platform/qt/HandOver.h"

#include <QSemaphore>
#include <QThread>
#include <QTimer>

#include <thread>

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
    m_mainContext.post(std::move(task));
}

void QtDispatch::toBackground(Task task) {
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
