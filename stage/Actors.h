#pragma once

#include "stage/VirtualDesktop.h"

#include <optional>

/// What a program pasted, and by which keys ("Ctrl+V", "Ctrl+Shift+V", ..., "other").
struct Paste {
    QString via;
    QStringList formats;
    QString text;
    QString html;
    QByteArray rtf;
};

/// What kind of program a PasteTarget is. An X11 desktop has only Qt's.
enum class TargetKind {
    Qt,       ///< Qt, by the desktop's own protocol
    Gtk,      ///< GTK 3; clear, busy and quit are all the commands it knows
    Foot,     ///< a terminal, which tells of "focused", "paste" and "typed" and takes no commands
    XWayland, ///< Qt as an X client
};

/// A window to paste into, in a process of its own. It tells of "focused", "unfocused", "paste",
/// "typed", "key" and "done"; paste_target.cpp has its arguments and commands.
class PasteTarget : public StageProcess {
public:
    /// Starts it; errorString() tells if that fails.
    explicit PasteTarget(const VirtualDesktop &desktop, const QStringList &arguments = {});
    /// The same in another kind of program; `arguments` are for Qt's.
    PasteTarget(const VirtualDesktop &desktop, TargetKind kind, const QStringList &arguments = {});

    /// Whether it has the keyboard focus, by what it has told so far.
    bool hasFocus() const;
    /// The paste with that place (0 is the first since forgetEvents()), waiting for it; nothing
    /// when it does not come in time.
    std::optional<Paste> waitForPaste(qsizetype place = 0, int milliseconds = 15000);
    /// How many pastes there were since forgetEvents().
    qsizetype pasteCount() const;
    /// The text that was typed into it, not pasted, since forgetEvents().
    QString typed() const;
    /// Gives a command and waits until it has been carried out; false if it was not. For a busy
    /// target use send(), which does not wait.
    bool command(const QString &line);

private:
    TargetKind m_kind;
};

/// The desktop's portal, with a user who answers its dialogs. It tells of what it did; see
/// desktop_portal.cpp for its arguments and commands.
class DesktopPortal : public StageProcess {
public:
    /// Starts it and waits until it is on the bus.
    DesktopPortal(const VirtualDesktop &desktop, const QStringList &arguments);

    /// What it did since forgetEvents(), in its words.
    QStringList done() const;
};

/// One flavour of a ClipboardOwner.
struct OwnedFlavour {
    QString name;
    QByteArray data;
    /// The type it is delivered as; the name itself if empty.
    QString type = {};
};

/// Another program that owns the clipboard. It tells of "owned", "cleared" (someone else owns it
/// now), "request", "swallowed" and "served"; clipboard_owner.cpp has its arguments, with
/// data-control wayland_clipboard_owner.cpp.
class ClipboardOwner : public StageProcess {
public:
    /// Starts it and waits until it owns the clipboard; see ownsClipboard().
    ClipboardOwner(const VirtualDesktop &desktop, const QList<OwnedFlavour> &flavours,
                   const QStringList &arguments = {});

    /// Whether it has become the owner and nobody has taken the clipboard from it since.
    bool ownsClipboard() const;
};
