#pragma once

#include "stage/ClipboardReader.h"
#include "stage/Keyring.h"
#include "stage/NotificationLog.h"
#include "stage/Windows.h"
#include "stage/Workplace.h"

#include <QTest>

#include <csignal>

inline const QString record = "507f1f77bcf86cd799439011";
inline const QString recordLink = "https://r.example/507f1f77bcf86cd799439011";

/// A workplace and what Brindle tells there. Its user has set an address and a token up or, without
/// a keyring, lacks the token.
struct Scene : Workplace {
    explicit Scene(const DesktopOptions &options = {.keyring = true})
        : Workplace(options), shown(desktop.busAddress()) {}

    void start(QMap<QString, QString> settings = {}, const QString &program = BRINDLE_PROGRAM,
               const QStringList &arguments = {}) {
        settings.insert({{"jiraEmail", "ann@h.example"},
                         {"accountBaseURL", "https://r.example/"},
                         {"toldWithoutTray", "true"}});
        Workplace::start(settings, program, arguments);
    }

    /// What another program that copies text, as HTML too, offers.
    QList<OwnedFlavour> copied(const QString &text) const {
        return {{"text/html", "<p>" + text.toUtf8() + "</p>"}, {textName(), text.toUtf8()}};
    }
    bool hasEnded() {
        return waitFor([this] { return brindle->state() == QProcess::NotRunning; }) &&
               brindle->exitStatus() == QProcess::NormalExit;
    }

    NotificationLog shown;
    bool isAllowedAll = false; ///< by the user of a desktop that asks for it and remembers it
};
