#include "platform/qt/QtChildProcess.h"

#include <QProcess>

namespace {

/// A process that is killed when it goes and not waited for: the end of the program does not hang
/// on a child that can't be ended.
class Child : public QProcess {
public:
    using QProcess::QProcess;
    ~Child() override {
        disconnect();
        if (state() != NotRunning) {
            kill();
            constexpr int longestWait = 100; // ms
            waitForFinished(longestWait);
        }
    }
};

ChildResult resultOf(QProcess &process) {
    // A program killed by a signal has failed, whatever number the system left as its status.
    const bool crashed = process.exitStatus() == QProcess::CrashExit;
    const int status = crashed && process.exitCode() == 0 ? 1 : process.exitCode();
    return {{}, status, process.readAllStandardError()};
}

} // namespace

void QtChildProcess::run(const QString &program, const QStringList &arguments,
                         std::function<void(const ChildResult &)> done) {
    auto *process = new Child(&m_running);
    process->setProcessChannelMode(QProcess::ForwardedOutputChannel);
    process->setInputChannelMode(QProcess::ForwardedInputChannel);
    QObject::connect(process, &QProcess::errorOccurred, &m_running,
                     [process, done](QProcess::ProcessError error) {
                         if (error != QProcess::FailedToStart)
                             return;
                         process->deleteLater();
                         done({process->errorString(), 0, {}});
                     });
    QObject::connect(process, &QProcess::finished, &m_running, [process, done] {
        process->deleteLater();
        done(resultOf(*process));
    });
    process->start(program, arguments);
}
