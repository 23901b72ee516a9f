#pragma once

#include <QObject>

#include <functional>

/// Runs what any thread posts on the thread it lives on, in later turns of its event loop and in
/// the order of posting. What is still waiting when it goes is dropped.
class WorkQueue : public QObject {
public:
    /// Any thread.
    void post(std::function<void()> work);

protected:
    bool event(QEvent *event) override;
};
