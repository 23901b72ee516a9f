#include "hardening/Parts.h"
#include "hardening/WrittenRounds.h"

#include "model/AppInfo.h"
#include "platform/Platform.h"
#include "platform/qt/QtDispatch.h"
#include "platform/qt/SettingsFile.h"
#include "stage/StageProcess.h"
#include "storage/Settings.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>

namespace {

/// Starts a writer and kills it at a moment of its own; the last round it told of, 0 if it told of
/// a problem instead.
int writeAndKill(Findings &findings, const QString &folder, QRandomGenerator &random) {
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_CONFIG_HOME", folder);
    StageProcess writer(environment);
    if (!writer.launch(SETTINGS_WRITER_PROGRAM, {}) || writer.waitForEvent("written").isEmpty()) {
        findings.check(false, "the writer does not write " + writer.errorString());
        return 0;
    }
    constexpr quint32 longest = 30000; // microseconds, some rounds
    QThread::usleep(random.bounded(longest));
    writer.kill();
    writer.waitForFinished();
    for (const QJsonObject &problem : writer.events("problem"))
        findings.check(false, "while writing: " + problem["what"].toString());
    return writer.events("written").constLast()["round"].toInt();
}

/// Reads the file as the next start of the product would.
void look(Findings &findings, const QString &path, int told) {
    Platform platform;
    platform.dispatch = std::make_shared<QtDispatch>();
    platform.defaults = std::make_shared<SettingsFile>(path);
    platform.defaults->onProblem([&](const QString &problem) { findings.check(false, problem); });
    Platform::install(platform);
    Settings::restart();
    const QList<int> rounds = WrittenRounds::read(Settings::shared());
    Settings::restart();
    Platform::install({});
    // The writer goes through the settings in order: some may be one round ahead of the others, and
    // none behind what the writer knew to be on disk.
    const bool inOrder = std::is_sorted(rounds.rbegin(), rounds.rend());
    const bool isLatest = rounds.constLast() >= told && rounds.constFirst() <= told + 2 &&
                          rounds.constFirst() - rounds.constLast() <= 1;
    QStringList found;
    for (const int round : rounds)
        found.append(QString::number(round));
    findings.check(inOrder && isLatest,
                   QString("after round %1 the file holds %2").arg(told).arg(found.join(' ')));
}

} // namespace

void killWriters(Findings &findings, int count, quint32 seed) {
    Findings::note(QString("seed %1").arg(seed));
    QRandomGenerator random(seed);
    const QTemporaryDir folder;
    const QString name = AppInfo::bundleIdentifier() + ".conf";
    int round = 0;
    for (int i = 0; i < count && findings.faults() == 0; ++i) {
        round = writeAndKill(findings, folder.path(), random);
        look(findings, folder.filePath(name), round);
    }
    QStringList others = QDir(folder.path()).entryList(QDir::Files | QDir::Hidden);
    others.removeAll(name);
    Findings::note(
        QString("%1 kills within %2 rounds of writing; %3 other file(s) beside the settings")
            .arg(count)
            .arg(round)
            .arg(others.size()));
    if (!others.isEmpty())
        Findings::note("for example " + others.constFirst());
}
