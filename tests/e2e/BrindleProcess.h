#pragma once

#include "support/TestProcess.h"

#include <QMap>

class TestDesktop;

/// Puts a token into the keyring of the desktop as Brindle keeps it.
bool storeToken(const TestDesktop &desktop, const QString &account, const QByteArray &token);

/// The real program on a TestDesktop.
class BrindleProcess : public TestProcess {
public:
    /// Writes the settings file and starts the product, or `program` in its place.
    BrindleProcess(const TestDesktop &desktop, const QMap<QString, QString> &settings,
                   const QString &program = BRINDLE_PROGRAM, const QStringList &arguments = {});

    /// Waits until the launch sequence is through.
    bool isUp();

    /// Calls an action of the program over the bus.
    bool activate(const QString &action);

private:
    const TestDesktop &m_desktop;
};
