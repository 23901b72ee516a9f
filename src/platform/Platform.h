#pragma once

#include "platform/Alerts.h"
#include "platform/ChildProcess.h"
#include "platform/Defaults.h"
#include "platform/Dispatch.h"
#include "platform/FrontWindow.h"
#include "platform/Hotkeys.h"
#include "platform/LoginItems.h"
#include "platform/Notifications.h"
#include "platform/PasteKeys.h"
#include "platform/Pasteboard.h"
#include "platform/SecretStore.h"
#include "platform/SecureInput.h"
#include "platform/TrayHost.h"
#include "platform/UrlSession.h"
#include "platform/Workspace.h"

#include <QStringList>

#include <functional>
#include <memory>

/// Says what is chosen later than at the start, to whoever wants to know by then.
struct LateChoices {
    std::function<void(const QString &)> tell = [](const QString &) {};
};

/// Every port, in one place. The entry point installs the desktop's, tests install their own; the
/// ports live until the next install (of none, at the end of the program).
struct Platform {
    std::shared_ptr<Dispatch> dispatch;
    std::shared_ptr<Pasteboard> pasteboard;
    std::shared_ptr<PasteKeys> pasteKeys;
    std::shared_ptr<SecureInput> secureInput;
    std::shared_ptr<FrontWindow> frontWindow;
    std::shared_ptr<Hotkeys> hotkeys;
    std::shared_ptr<ChildProcess> childProcess;
    std::shared_ptr<Notifications> notifications;
    std::shared_ptr<Defaults> defaults;
    std::shared_ptr<SecretStore> secretStore;
    std::shared_ptr<Alerts> alerts;
    std::shared_ptr<Workspace> workspace;
    std::shared_ptr<TrayHost> trayHost;
    std::shared_ptr<UrlSession> urlSession;
    std::shared_ptr<LoginItems> loginItems;

    /// Which backend serves what, and which were passed over and why.
    QStringList choices = {};
    /// The same of what can be chosen only when the desktop has answered, from then on.
    std::shared_ptr<LateChoices> lateChoices = std::make_shared<LateChoices>();

    /// What serves `capability` and what was passed over and why, in the words of `choices`.
    QString choiceOf(const QString &capability) const;

    /// Has `choices` take up what is chosen late, and tells it.
    void followLateChoices(std::function<void(const QString &choice)> tell);

    /// The end: calls off whatever is under way and waits until no thread runs any of it. The ports
    /// stay, to be asked for little.
    void finish() const;

    /// The ports in force. Only after install().
    static Platform &current();

    static void install(Platform platform);
};
