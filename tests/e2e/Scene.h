#pragma once

#include "stage/Actors.h"
#include "stage/BrindleProcess.h"
#include "stage/ClipboardReader.h"
#include "stage/Keyring.h"
#include "stage/VirtualDesktop.h"
#include "stage/VirtualKeyboard.h"
#include "stage/WaylandClipboardReader.h"
#include "stage/Windows.h"
#include "support/NotificationLog.h"

#include <QTest>

#include <csignal>

inline const QString record = "507f1f77bcf86cd799439011";
inline const QString recordLink = "https://r.example/507f1f77bcf86cd799439011";

/// A desktop and what is needed to start Brindle on it, as a user with an address and a token or,
/// without a keyring, as one who lacks the token.
struct Scene {
    explicit Scene(DesktopOptions options = {.keyring = true})
        : desktop(options),
          keys(desktop),
          shown(desktop.busAddress()),
          isStored(!options.keyring || storeToken(desktop, "jira-api-token", "jira-secret")) {}

    void start(QMap<QString, QString> settings = {}, const QString &program = BRINDLE_PROGRAM,
               const QStringList &arguments = {}) {
        settings.insert({{"jiraEmail", "ann@h.example"},
                         {"accountBaseURL", "https://r.example/"},
                         {"toldWithoutTray", "true"}});
        brindle = std::make_unique<BrindleProcess>(desktop, settings, program, arguments);
    }

    bool isUp() { return desktop.problem().isEmpty() && isStored && brindle->isUp(); }

    /// Puts an application in front, to be pasted into; false if it does not come.
    bool openTarget(const QStringList &arguments = {}, TargetKind kind = TargetKind::Qt) {
        target = std::make_unique<PasteTarget>(desktop, kind, arguments);
        return waitFor([this] { return target->hasFocus(); });
    }

    /// The hotkey, from its first key to its last.
    static QList<int> hotkey() {
        return {keyCode(KEY_LEFTCTRL), keyCode(KEY_LEFTALT), keyCode(KEY_LEFTMETA), keyCode(KEY_V)};
    }
    void press() { keys.chord({hotkey()[0], hotkey()[1], hotkey()[2], hotkey()[3]}); }

    /// The name of text on this desktop.
    QString textName() const {
        return desktop.kind() == DesktopKind::X11 ? "UTF8_STRING" : "text/plain;charset=utf-8";
    }
    /// What another program that copies text, as HTML too, offers.
    QList<OwnedFlavour> copied(const QString &text) const {
        return {{"text/html", "<p>" + text.toUtf8() + "</p>"}, {textName(), text.toUtf8()}};
    }
    QByteArray clipboardData(const QString &name) const {
        const auto data = hasDataControl(desktop.kind())
                              ? WaylandClipboardReader(desktop.waylandSocket()).data(name)
                              : ClipboardReader(desktop.display()).data(name);
        return data.value_or("(nothing)");
    }
    QString clipboard(const QString &name = {}) const {
        return QString::fromUtf8(clipboardData(name.isEmpty() ? textName() : name));
    }
    bool clipboardBecomes(const QString &text) {
        return waitFor([&] { return clipboard() == text; });
    }
    bool shows(const QString &title) {
        return waitFor([&] { return windowTitles(desktop.display()).contains(title); });
    }
    bool hasEnded() {
        return waitFor([this] { return brindle->state() == QProcess::NotRunning; }) &&
               brindle->exitStatus() == QProcess::NormalExit;
    }

    VirtualDesktop desktop;
    VirtualKeyboard keys;
    NotificationLog shown;
    bool isStored;
    std::unique_ptr<BrindleProcess> brindle;
    std::unique_ptr<PasteTarget> target;
};
