#pragma once

#include "stage/DesktopHome.h"
#include "stage/DesktopOptions.h"
#include "stage/Screen.h"

#include <QDBusConnection>

/// A desktop with nothing of the user's in it: its own display or compositor, window manager, bus,
/// home and the services asked for, all up when the constructor returns and all gone after the
/// destructor. Needs a QCoreApplication; belongs to the main thread. Wayland compositors refuse
/// root: see leaveRoot().
class VirtualDesktop {
public:
    explicit VirtualDesktop(const DesktopOptions &options = {});
    /// Ends every program of this desktop, also those that others have started.
    ~VirtualDesktop();
    VirtualDesktop(const VirtualDesktop &) = delete;
    VirtualDesktop &operator=(const VirtualDesktop &) = delete;

    /// What did not start, with the end of its messages; empty when all is up. To be looked at
    /// before anything else.
    QString problem() const { return m_home.problem(); }
    DesktopKind kind() const { return m_kind; }
    /// What programs on this desktop must be started with.
    QProcessEnvironment environment() const { return m_home.environment(); }
    /// Makes this process one of the desktop's programs: its environment leads there from now on.
    void join() const;
    /// The name of the X display; on Wayland that of XWayland.
    QString display() const { return m_screen->display(); }
    /// The name of the display where faking a key is pressing it on the keyboard: the outer one
    /// with `physicalKeyboard`, else the inner one. Empty on Wayland.
    QString keyboardDisplay() const { return m_screen->keyboardDisplay(); }
    /// The path of the compositor's socket; empty on X11.
    QString waylandSocket() const;
    /// The program that plays the keyboard on Wayland; null on X11.
    StageProcess *keyboard() const { return m_screen->keyboard(); }
    /// The address of the session bus; empty without one.
    QString busAddress() const { return m_busAddress; }
    /// The test's own connection to the session bus; disconnected without one.
    QDBusConnection bus() const { return QDBusConnection(m_busAddress); }
    /// The home folder, gone with the desktop.
    QString home() const { return m_home.path(); }
    /// The ids of the programs running on this desktop, whoever started them.
    QList<qint64> processes() const { return processesAt(home()); }
    /// The ids of the programs running with that home folder.
    static QList<qint64> processesAt(const QString &home) { return DesktopHome::processesAt(home); }

private:
    void beginBus(const QStringList &serviceFolders);
    void beginServices(const DesktopOptions &options);
    void awaitServices(const DesktopOptions &options);
    void awaitName(const QString &name, const QString &program);

    DesktopKind m_kind;
    DesktopHome m_home; // outlives the screen, whose programs it ends
    std::unique_ptr<Screen> m_screen;
    QString m_busAddress;
};
