#include "platform/qt/WorkQueue.h"

#include "platform/qt/HandOver.h"

#include <QCoreApplication>
#include <QEvent>

namespace {

struct Work : QEvent {
    explicit Work(std::function<void()> given) : QEvent(kind()), run(std::move(given)) {}

    static Type kind() {
        static const auto registered = static_cast<Type>(registerEventType());
        return registered;
    }

    std::function<void()> run;
};

} // namespace

void WorkQueue::post(std::function<void()> work) {
    auto *event = new Work(std::move(work));
    HandOver::give();
    QCoreApplication::postEvent(this, event);
}

bool WorkQueue::event(QEvent *event) {
    if (event->type() != Work::kind())
        return QObject::event(event);
    HandOver::take();
    static_cast<Work *>(event)->run();
    return true;
}
