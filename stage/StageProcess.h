#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QProcess>
#include <QStringList>

#include <functional>

/// Runs the event loop of this thread until `predicate` holds; false after `milliseconds`.
/// The bound is for a machine under load: a wait that succeeds takes as long as the thing itself.
bool waitFor(const std::function<bool()> &predicate, int milliseconds = 15000);

/// A program that ends with its object, and with this process however that ends. What it
/// writes to its output is kept in lines, and lines that are JSON objects with an "event" as
/// events. Belongs to the thread that made it, which should be the main one.
class StageProcess : public QProcess {
public:
    /// Nothing runs yet. The program's errors go to `errorLog`, or to the test's own without one.
    explicit StageProcess(const QProcessEnvironment &environment, const QString &errorLog = {});
    /// Closes its input, asks it to terminate, and kills it if it does not.
    ~StageProcess() override;

    /// Starts the program and returns once it runs; false (see errorString()) if it does not.
    bool launch(const QString &program, const QStringList &arguments);
    /// Ends it as the destructor does; harmless when it is not running.
    void stop();

    /// The lines written so far, without their ends.
    const QStringList &lines() const { return m_lines; }
    /// The events of that name so far, oldest first.
    QList<QJsonObject> events(const QString &name) const;
    /// The event of that name with the given place (0 is the first), waiting for it if need be;
    /// an empty object if it does not come in time or the program ends.
    QJsonObject waitForEvent(const QString &name, qsizetype place = 0, int milliseconds = 15000);
    /// Forgets the events so far, so that places count from here.
    void forgetEvents();
    /// Writes one line to its input.
    void send(const QString &line);

private:
    void readLines();

    QStringList m_lines;
    QList<QJsonObject> m_events;
};
