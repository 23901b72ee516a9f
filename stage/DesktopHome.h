#pragma once

#include "stage/StageProcess.h"

#include <QTemporaryDir>

#include <memory>
#include <vector>

/// The home folder of a desktop, the environment of its programs, and those of them that make up
/// the desktop itself, each with a log.
class DesktopHome {
public:
    /// Makes the folders.
    DesktopHome();
    /// Ends every program of this desktop, also those that others have started.
    ~DesktopHome();
    DesktopHome(const DesktopHome &) = delete;
    DesktopHome &operator=(const DesktopHome &) = delete;

    /// The home folder, gone with this object.
    QString path() const { return m_folder.path(); }
    /// What programs are started with from now on.
    QProcessEnvironment &environment() { return m_environment; }
    const QProcessEnvironment &environment() const { return m_environment; }
    /// What did not start, with the end of its messages; empty when all did.
    QString problem() const { return m_problem; }

    /// Starts a program that lives as long as the desktop.
    StageProcess *begin(const QString &program, const QStringList &arguments = {});
    /// Waits until the program has written its first line, which is returned; empty (see
    /// problem()) if it ends before or takes too long.
    QString firstLine(const StageProcess &program);
    /// What the program of that name has written to its log.
    QByteArray said(const QString &program) const;
    /// Writes a file, in folders that are made for it; its path.
    QString write(const QString &name, const QByteArray &content);
    /// Notes that the program did not do its part; only the first note counts.
    void fail(const QString &program, const QString &what);
    /// Ends all programs, the latest first.
    void end();

    /// The ids of the programs running with that home folder, whoever started them.
    static QList<qint64> processesAt(const QString &home);

private:
    QString logOf(const QString &program) const;

    QTemporaryDir m_folder;
    QProcessEnvironment m_environment;
    QString m_problem;
    std::vector<std::unique_ptr<StageProcess>> m_programs; // in the order of their start
};
