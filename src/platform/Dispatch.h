#pragma once

#include <QDateTime>

#include <chrono>
#include <functional>
#include <memory>

/// A scheduled piece of work that can still be called off. Copies share one piece of work.
class WorkItem {
public:
    WorkItem() = default;
    explicit WorkItem(std::shared_ptr<bool> cancelled) : m_cancelled(std::move(cancelled)) {}

    /// Main thread; harmless when the work has run or there is none.
    void cancel() {
        if (m_cancelled)
            *m_cancelled = true;
        m_cancelled.reset();
    }

    explicit operator bool() const { return m_cancelled != nullptr; }

private:
    std::shared_ptr<bool> m_cancelled;
};

/// A counting semaphore that starts at 0. Any thread.
class Semaphore {
public:
    virtual ~Semaphore() = default;

    virtual void signal() = 0;

    /// Blocks until signalled; false when `timeout` passed first.
    virtual bool wait(std::chrono::milliseconds timeout) = 0;
};

/// Queues and time. Every operation may be called from any thread unless it says otherwise.
class Dispatch {
public:
    using Task = std::function<void()>;
    using Clock = std::chrono::steady_clock;

    virtual ~Dispatch() = default;

    virtual bool isMainThread() const = 0;

    /// Runs `task` on the main thread in a later turn of the event loop, in order of posting.
    virtual void toMain(Task task) = 0;

    /// Runs `task` on a thread of the pool for work the user waits for.
    virtual void toBackground(Task task) = 0;

    /// Runs `task` on the main thread after `delay`. To be called on the main thread.
    virtual WorkItem after(std::chrono::milliseconds delay, Task task) = 0;

    /// The same at `time`, as exactly as the machine can (after() may be a millisecond late).
    virtual WorkItem at(Clock::time_point time, Task task) = 0;

    /// The monotonic clock that delays are counted by.
    virtual Clock::time_point now() const = 0;

    /// The time of day, for stamps the user sees.
    virtual QDateTime wallTime() const = 0;

    virtual std::shared_ptr<Semaphore> makeSemaphore() = 0;

    /// The end: waits for the background tasks that run, drops those that wait, and accepts no
    /// more. What they wait for must have been cancelled. Main thread.
    virtual void finish() = 0;
};
