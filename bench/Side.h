#pragma once

#include "bench/Desk.h"
#include "bench/PasteWindow.h"

/// A user in front of a window, at a desktop where one program waits for the hotkey. Calls block
/// the thread and give the measurement up when something does not come.
class Side {
public:
    /// Starts the program and waits until it has the hotkey.
    Side(const QMap<QString, QString> &settings, const QString &program,
         const QStringList &arguments = {});

    /// Ends the program and starts it anew, with nothing warm in it.
    void restart();

    /// Copies `text` (and `more` beside it), presses the hotkey and waits for a paste as `type`
    /// that holds `link`. The milliseconds from the press to it, without the pause that every
    /// program makes before the paste keys.
    double paste(const QByteArray &text, const QByteArray &type, const QByteArray &link,
                 const QList<OwnedFlavour> &more = {});

    /// Waits until the clipboard holds `text` again, as it was copied.
    void waitForRestore(const QByteArray &text) const;

private:
    void start();

    Desk m_desk;
    PasteWindow m_window{m_desk.desktop.display()};
    QString m_name;
    QStringList m_arguments;
};
