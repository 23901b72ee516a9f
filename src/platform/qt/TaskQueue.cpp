#include "platform/qt/TaskQueue.h"

#include <QCoreApplication>
#include <QEvent>

namespace {

/// Says that there is one more task to run.
QEvent::Type taskEvent() {
    static const auto registered = static_cast<QEvent::Type>(QEvent::registerEventType());
    return registered;
}

} // namespace

void TaskQueue::post(Task task) {
    {
        const std::scoped_lock lock(m_mutex);
        m_tasks.push_back(std::move(task));
    }
    QCoreApplication::postEvent(this, new QEvent(taskEvent()));
}

TaskQueue::Task TaskQueue::takeFirst() {
    const std::scoped_lock lock(m_mutex);
    Task task = std::move(m_tasks.front());
    m_tasks.pop_front();
    return task;
}

bool TaskQueue::event(QEvent *event) {
    if (event->type() != taskEvent())
        return QObject::event(event);
    takeFirst()();
    return true;
}
