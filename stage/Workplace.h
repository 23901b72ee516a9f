#pragma once

#include "stage/Actors.h"
#include "stage/BrindleProcess.h"
#include "stage/VirtualDesktop.h"
#include "stage/VirtualKeyboard.h"

/// A desktop with somebody at its keyboard who copies links and presses the hotkey, and what is
/// needed for that: Brindle and, in front, an application to paste into.
struct Workplace {
    /// With a keyring there is a token for Jira in it.
    explicit Workplace(const DesktopOptions &options = {.keyring = true});

    /// Starts Brindle.
    void start(const QMap<QString, QString> &settings,
               const QString &program = QStringLiteral(BRINDLE_PROGRAM),
               const QStringList &arguments = {});
    /// Whether all that was asked for so far has come up, waiting for it.
    bool isUp();

    /// Puts an application in front, to be pasted into; false if it does not come.
    bool openTarget(const QStringList &arguments = {}, TargetKind kind = TargetKind::Qt);

    /// The hotkey, from its first key to its last.
    static QList<int> hotkey();
    void press();

    /// The name of text on this desktop.
    QString textName() const;
    /// What another program offers in one flavour; "(nothing)" if there is none such.
    QByteArray clipboardData(const QString &name) const;
    /// The same as text; the flavour without a name is plain text.
    QString clipboard(const QString &name = {}) const;
    /// Waits until the clipboard holds that text.
    bool clipboardBecomes(const QString &text) const;
    /// Waits for a window of that title.
    bool shows(const QString &title) const;

    VirtualDesktop desktop;
    VirtualKeyboard keys;
    bool isStored; ///< the token
    std::unique_ptr<BrindleProcess> brindle;
    std::unique_ptr<PasteTarget> target;
};
