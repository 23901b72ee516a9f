#pragma once

#include "stage/StageProcess.h"

#include <QDBusPendingCall>
#include <QMap>

class VirtualDesktop;

/// The real program on a VirtualDesktop.
class BrindleProcess : public StageProcess {
public:
    /// Writes the settings file and starts the product, or `program` in its place.
    BrindleProcess(const VirtualDesktop &desktop, const QMap<QString, QString> &settings,
                   const QString &program = QStringLiteral(BRINDLE_PROGRAM),
                   const QStringList &arguments = {});

    /// Adds to the settings file; false when it can't be written.
    static bool writeSettings(const VirtualDesktop &desktop,
                              const QMap<QString, QString> &settings);

    /// Waits until the launch sequence is through.
    bool isUp();

    /// Calls an action of the program over the bus, and waits for the answer.
    bool activate(const QString &action);

    /// The same without waiting: for a program that is stopped just now.
    QDBusPendingCall call(const QString &action);

private:
    const VirtualDesktop &m_desktop;
};
