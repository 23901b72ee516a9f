#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>

/// How a child process ended. `launchError` is empty when it could be started.
struct ChildResult {
    QString launchError;
    int exitStatus = 0;
    QByteArray standardError;
};

/// Running other programs. Main thread only.
class ChildProcess {
public:
    virtual ~ChildProcess() = default;

    /// Runs `program` (looked up in PATH) to its end, its standard error collected, its standard
    /// output left alone, and returns at once. `done` is called on the main thread; not any more
    /// once the port is gone, which ends the program.
    virtual void run(const QString &program, const QStringList &arguments,
                     std::function<void(const ChildResult &)> done) = 0;
};
