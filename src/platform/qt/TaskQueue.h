#pragma once

#include <QObject>

#include <deque>
#include <functional>
#include <mutex>

/// Runs what any thread posts on the thread it lives on, each task in a later turn of its event
/// loop and in the order of posting. A task owns what it carries; it travels under a lock of ours,
/// so that the thread sanitizer sees who gave what to whom. What is still waiting when the queue
/// goes is dropped.
class TaskQueue : public QObject {
public:
    using Task = std::function<void()>;

    /// Any thread.
    void post(Task task);

protected:
    bool event(QEvent *event) override;

private:
    Task takeFirst();

    std::mutex m_mutex;
    std::deque<Task> m_tasks;
};
