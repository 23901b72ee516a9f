#include "stage/StageProcess.h"

#include <QJsonDocument>
#include <QtCore/qtestsupport_core.h>

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

bool waitFor(const std::function<bool()> &predicate, int milliseconds) {
    return QTest::qWaitFor(predicate, milliseconds);
}

StageProcess::StageProcess(const QProcessEnvironment &environment, const QString &errorLog) {
    setProcessEnvironment(environment);
    if (errorLog.isEmpty())
        setProcessChannelMode(QProcess::ForwardedErrorChannel);
    else
        setStandardErrorFile(errorLog, QIODevice::Append);
    setChildProcessModifier([parent = getpid()] {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (getppid() != parent) // the test died before the call above
            _exit(1);
    });
    connect(this, &QProcess::readyReadStandardOutput, this, &StageProcess::readLines);
}

StageProcess::~StageProcess() {
    stop();
}

bool StageProcess::launch(const QString &program, const QStringList &arguments) {
    start(program, arguments);
    return waitForStarted();
}

void StageProcess::stop() {
    if (state() == QProcess::NotRunning)
        return;
    closeWriteChannel();
    terminate();
    if (waitForFinished(5000))
        return;
    qWarning("%s does not terminate: killed", qPrintable(program()));
    kill();
    waitForFinished();
}

QList<QJsonObject> StageProcess::events(const QString &name) const {
    QList<QJsonObject> found;
    for (const QJsonObject &event : m_events) {
        if (event[u"event"].toString() == name)
            found.append(event);
    }
    return found;
}

QJsonObject StageProcess::waitForEvent(const QString &name, qsizetype place, int milliseconds) {
    const auto isThere = [&] { return events(name).size() > place; };
    waitFor([&] { return isThere() || state() == QProcess::NotRunning; }, milliseconds);
    return isThere() ? events(name).at(place) : QJsonObject();
}

void StageProcess::forgetEvents() {
    m_events.clear();
}

void StageProcess::send(const QString &line) {
    write(line.toUtf8() + '\n');
}

void StageProcess::readLines() {
    while (canReadLine()) {
        const QByteArray line = readLine().chopped(1);
        m_lines.append(QString::fromUtf8(line));
        const QJsonObject event = QJsonDocument::fromJson(line).object();
        if (event.contains(u"event"))
            m_events.append(event);
    }
}
