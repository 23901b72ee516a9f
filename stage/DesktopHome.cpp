#include "stage/DesktopHome.h"

#include <QDir>
#include <QFileInfo>

#include <csignal>

using namespace Qt::StringLiterals;

DesktopHome::DesktopHome() {
    const auto folder = [this](const QString &name) {
        QString path = m_folder.filePath(name);
        QDir().mkpath(path);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    };
    folder(u"log"_s);
    m_environment.insert(u"HOME"_s, path());
    m_environment.insert(u"XDG_CONFIG_HOME"_s, folder(u"config"_s));
    m_environment.insert(u"XDG_DATA_HOME"_s, folder(u"data"_s));
    m_environment.insert(u"XDG_STATE_HOME"_s, folder(u"state"_s));
    m_environment.insert(u"XDG_CACHE_HOME"_s, folder(u"cache"_s));
    m_environment.insert(u"XDG_RUNTIME_DIR"_s, folder(u"run"_s));
    m_environment.insert(u"TMPDIR"_s, folder(u"tmp"_s));
    m_environment.insert(u"LANG"_s, u"C.UTF-8"_s);
    m_environment.insert(u"NO_AT_BRIDGE"_s, u"1"_s);
    // What concerns how programs run, not where, stays as the developer has it.
    for (const char *name : {"PATH", "LD_LIBRARY_PATH", "QT_PLUGIN_PATH", "FONTCONFIG_FILE",
                             "ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"}) {
        if (qEnvironmentVariableIsSet(name))
            m_environment.insert(QString::fromLatin1(name), qEnvironmentVariable(name));
    }
}

DesktopHome::~DesktopHome() {
    end();
    // Programs that the bus or another program started usually leave with the bus.
    const auto isDeserted = [this] { return processesAt(path()).isEmpty(); };
    if (!waitFor(isDeserted, 2000)) {
        for (const qint64 id : processesAt(path())) {
            qWarning("process %lld stays after its desktop: killed", static_cast<long long>(id));
            ::kill(static_cast<pid_t>(id), SIGKILL);
        }
        waitFor(isDeserted);
    }
}

void DesktopHome::end() {
    while (!m_programs.empty()) {
        m_programs.back()->stop();
        m_programs.pop_back();
    }
}

QList<qint64> DesktopHome::processesAt(const QString &home) {
    const QByteArray mark = '\0' + ("HOME=" + QFile::encodeName(home)) + '\0';
    QList<qint64> found;
    for (const QString &entry : QDir(u"/proc"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        bool isNumber = false;
        const qint64 id = entry.toLongLong(&isNumber);
        QFile environment(u"/proc/%1/environ"_s.arg(entry));
        if (isNumber && environment.open(QIODevice::ReadOnly) &&
            ('\0' + environment.readAll()).contains(mark))
            found.append(id);
    }
    return found;
}

StageProcess *DesktopHome::begin(const QString &program, const QStringList &arguments) {
    const auto &process =
        m_programs.emplace_back(std::make_unique<StageProcess>(m_environment, logOf(program)));
    if (!process->launch(program, arguments))
        fail(program, process->errorString());
    return process.get();
}

QString DesktopHome::firstLine(const StageProcess &program) {
    waitFor([&] { return !program.lines().isEmpty() || program.state() == QProcess::NotRunning; });
    if (!program.lines().isEmpty())
        return program.lines().first();
    fail(program.program(), u"does not say that it is ready"_s);
    return {};
}

QString DesktopHome::write(const QString &name, const QByteArray &content) {
    QFile file(m_folder.filePath(name));
    QDir().mkpath(QFileInfo(file).path());
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        fail(file.fileName(), file.errorString());
    return file.fileName();
}

void DesktopHome::fail(const QString &program, const QString &what) {
    if (!m_problem.isEmpty()) // the first one is the cause
        return;
    m_problem =
        u"%1 %2\n%3"_s.arg(program, what, QString::fromLocal8Bit(said(program).right(2000)));
}

QByteArray DesktopHome::said(const QString &program) const {
    QFile log(logOf(program));
    return log.open(QIODevice::ReadOnly) ? log.readAll() : QByteArray();
}

QString DesktopHome::logOf(const QString &program) const {
    return m_folder.filePath(u"log/%1.log"_s.arg(QFileInfo(program).fileName()));
}
