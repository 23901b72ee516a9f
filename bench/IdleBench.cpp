#include "bench/Benches.h"
#include "bench/Desk.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QTest>

namespace {

constexpr int rounds = 3;
constexpr int settling = 5000;  // milliseconds
constexpr int idleTime = 20000; // milliseconds

/// By then the worker threads of the start have ended, the last of them after 30 s without work.
constexpr int startIsOver = 40000; // milliseconds

/// The sum of the numbers in the lines of a /proc file that start with `field`.
qint64 sumOf(const QString &path, const QByteArray &field) {
    QFile file(path);
    require(file.open(QIODevice::ReadOnly), path + ": " + file.errorString());
    qint64 sum = 0;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith(field + ':'))
            sum += line.mid(field.size() + 1).simplified().split(' ').first().toLongLong();
    }
    return sum;
}

/// The proportional set size in megabytes: memory shared with others counts by its share.
double memory(qint64 process) {
    return double(sumOf(QString("/proc/%1/smaps_rollup").arg(process), "Pss")) / 1024;
}

/// How often each thread of the process has stopped running so far; each wake-up ends so.
QHash<QString, qint64> switches(qint64 process) {
    const QString tasks = QString("/proc/%1/task/").arg(process);
    QHash<QString, qint64> counts;
    for (const QString &task : QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QString status = tasks + task + "/status";
        counts[task] =
            sumOf(status, "voluntary_ctxt_switches") + sumOf(status, "nonvoluntary_ctxt_switches");
    }
    return counts;
}

/// The wake-ups from one count to a later one. A thread that has ended meanwhile woke up at least
/// once, to do so.
qint64 wakeUps(const QHash<QString, qint64> &before, const QHash<QString, qint64> &after) {
    qint64 sum = 0;
    for (auto thread = after.begin(); thread != after.end(); ++thread)
        sum += thread.value() - before.value(thread.key());
    for (auto thread = before.begin(); thread != before.end(); ++thread)
        sum += after.contains(thread.key()) ? 0 : 1;
    return sum;
}

/// One program at rest.
struct Idle {
    double megabytes = 0;
    qint64 wakeUps = 0; ///< only when asked for
};

Idle watch(Desk &desk, const QString &program, bool forLong) {
    StageProcess process(desk.desktop.environment());
    require(process.launch(program, {}), process.errorString());
    desk.waitForIcon();
    QTest::qWait(settling);
    Idle idle{memory(process.processId())};
    if (forLong) {
        QTest::qWait(startIsOver - settling);
        const auto before = switches(process.processId());
        QTest::qWait(idleTime);
        idle.wakeUps = wakeUps(before, switches(process.processId()));
    }
    require(process.state() == QProcess::Running, program + " has ended");
    return idle;
}

} // namespace

QList<Row> benchIdle() {
    Desk desk;
    QList<double> brindleMegabytes, floorMegabytes;
    qint64 brindleWakeUps = 0, floorWakeUps = 0;
    for (int round = 0; round < rounds; ++round) {
        // One after the other: side by side they would share their libraries.
        const Idle brindle = watch(desk, BRINDLE_PROGRAM, round == 0);
        const Idle floor = watch(desk, BARE_TRAY_CONNECTED_PROGRAM, round == 0);
        brindleMegabytes.append(brindle.megabytes);
        floorMegabytes.append(floor.megabytes);
        brindleWakeUps += brindle.wakeUps;
        floorWakeUps += floor.wakeUps;
    }
    return {ratioRow("Memory when idle", median(brindleMegabytes), median(floorMegabytes), "MB",
                     "1.25 at most"),
            {"Wake-ups in 20 s when idle", QString::number(brindleWakeUps),
             QString::number(floorWakeUps), "-", "none"}};
}
