#pragma once

#include "platform/ChildProcess.h"

/// Child processes without a shell between.
class QtChildProcess : public ChildProcess {
public:
    ChildResult run(const QString &program, const QStringList &arguments) override;
};
