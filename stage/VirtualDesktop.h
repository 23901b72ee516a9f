#pragma once

#include "stage/StageProcess.h"
#include "stage/XConnection.h"

#include <QDBusConnection>
#include <QTemporaryDir>
#include <QTimer>

#include <memory>
#include <vector>

/// What a VirtualDesktop is made of.
struct DesktopOptions {
    /// Puts the display (Xephyr) inside another one: keys faked on the outer one
    /// arrive on the inner one from a keyboard of its own, apart from XTEST, as a user's do.
    bool physicalKeyboard = false;
    bool windowManager = true;
    bool bus = true;
    /// A real notification daemon (needs the bus).
    bool notifications = false;
    /// A secret service with an unlocked default collection (needs the bus).
    bool keyring = false;
    /// Programs publish their widgets to assistive technology (needs the bus).
    bool accessibility = false;
    /// Folders of service files that the bus may start programs from.
    QStringList serviceFolders = {};
};

/// A desktop with nothing of the user's in it: its own display, window manager, bus, home
/// and the services asked for, all up when the constructor returns and all gone after the
/// destructor. Needs a QCoreApplication; belongs to the main thread.
class VirtualDesktop {
public:
    explicit VirtualDesktop(const DesktopOptions &options = {});
    /// Ends every program of this desktop, also those that others have started.
    ~VirtualDesktop();
    VirtualDesktop(const VirtualDesktop &) = delete;
    VirtualDesktop &operator=(const VirtualDesktop &) = delete;

    /// What did not start, with the end of its messages; empty when all is up. To be looked at
    /// before anything else.
    QString problem() const { return m_problem; }
    /// What programs on this desktop must be started with.
    QProcessEnvironment environment() const { return m_environment; }
    /// The name of the display.
    QString display() const { return m_display; }
    /// The name of the display where faking a key is pressing it on the keyboard: the outer one
    /// with `physicalKeyboard`, else the inner one.
    QString keyboardDisplay() const { return m_outerDisplay; }
    /// The address of the session bus; empty without one.
    QString busAddress() const { return m_busAddress; }
    /// The test's own connection to the session bus; disconnected without one.
    QDBusConnection bus() const { return QDBusConnection(m_busAddress); }
    /// The home folder, gone with the desktop.
    QString home() const { return m_home.path(); }
    /// The ids of the programs running on this desktop, whoever started them.
    QList<qint64> processes() const { return processesAt(home()); }
    /// The ids of the programs running with that home folder.
    static QList<qint64> processesAt(const QString &home);

private:
    StageProcess *begin(const QString &program, const QStringList &arguments);
    void makeFolders();
    QString writeFile(const QString &name, const QByteArray &content);
    QString beginDisplay(const QString &program, const QStringList &arguments);
    void keepAwake();
    void beginBus(const QStringList &serviceFolders);
    void beginServices(const DesktopOptions &options);
    void awaitServices(const DesktopOptions &options);
    void awaitName(const QString &name, const QString &program);
    void fail(const QString &program, const QString &what);
    QString logOf(const QString &program) const;

    QTemporaryDir m_home;
    QProcessEnvironment m_environment;
    std::unique_ptr<XConnection> m_inner; ///< only with a display inside another one
    QTimer m_awake;
    QString m_display, m_outerDisplay, m_busAddress, m_problem;
    std::vector<std::unique_ptr<StageProcess>> m_programs; // in the order of their start
};
