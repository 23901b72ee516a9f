#include "platform/qt/QtChildProcess.h"

#include <QProcess>

ChildResult QtChildProcess::run(const QString &program, const QStringList &arguments) {
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedOutputChannel);
    process.setInputChannelMode(QProcess::ForwardedInputChannel);
    process.start(program, arguments);
    if (!process.waitForStarted(-1))
        return {process.errorString(), 0, {}};
    process.waitForFinished(-1);
    // A program killed by a signal has failed, whatever number the system left as its status.
    const bool crashed = process.exitStatus() == QProcess::CrashExit;
    const int status = crashed && process.exitCode() == 0 ? 1 : process.exitCode();
    return {{}, status, process.readAllStandardError()};
}
