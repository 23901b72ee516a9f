#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// How a child process ended. `launchError` is empty when it could be started.
struct ChildResult {
    QString launchError;
    int exitStatus = 0;
    QByteArray standardError;
};

/// Running other programs.
class ChildProcess {
public:
    virtual ~ChildProcess() = default;

    /// Runs `program` (looked up in PATH) to its end, its standard error collected, its standard
    /// output left alone. Blocks without a time-out; background threads only.
    virtual ChildResult run(const QString &program, const QStringList &arguments) = 0;
};
