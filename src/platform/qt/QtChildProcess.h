#pragma once

#include "platform/ChildProcess.h"

#include <QObject>

/// Child processes without a shell between.
class QtChildProcess : public ChildProcess {
public:
    void run(const QString &program, const QStringList &arguments,
             std::function<void(const ChildResult &)> done) override;

private:
    QObject m_running; ///< whose children are the processes under way
};
