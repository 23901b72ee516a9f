#include "app/Doctor.h"
#include "desktop/HotkeyManager.h"
#include "platform/Platform.h"
#include "platform/wording.h"
#include "storage/Settings.h"

#include <QFileInfo>

#include <memory>

#include <unistd.h>

using namespace Qt::StringLiterals;
using Mark = Finding::Mark;

namespace {

/// What serves a capability, or why nothing does, as the log has it.
QString served(const QString &capability) {
    return Platform::current().choiceOf(capability);
}

KeyCombo primaryHotkey() {
    return {Settings::shared().hotkeyKeyCode(), Settings::shared().hotkeyModifiers()};
}

Finding hotkeyFinding(const QString &problem, const QString &success) {
    const QString keys = Settings::shared().hotkeyDisplay();
    if (problem.isEmpty())
        return {{}, Mark::Ok, u"%1; %2 %3"_s.arg(served(u"hotkeys"_s), keys, success)};
    return {{},
            Mark::Problem,
            u"%1; %2 %3"_s.arg(served(u"hotkeys"_s), keys, problem),
            u"Choose another combination in the preferences, General."_s};
}

} // namespace

void Doctor::lookAtSession(const Tell &tell) {
    const QFileInfo runtime(qEnvironmentVariable("XDG_RUNTIME_DIR"));
    const bool isSomebodyElses =
        geteuid() == 0 && (qEnvironmentVariableIsSet("SUDO_USER") ||
                           (runtime.exists() && runtime.ownerId() != geteuid()));
    if (isSomebodyElses) {
        tell({{},
              Mark::Problem,
              u"this is root in the session of another user"_s,
              u"Call it as the user whose session it is, without sudo."_s});
    } else if (!runtime.isDir()) {
        tell({{}, Mark::Note, u"XDG_RUNTIME_DIR names no folder: this is no usual session"_s});
    } else {
        tell({{}, Mark::Ok, u"your own"_s});
    }
}

void Doctor::lookAtClipboard(const Tell &tell) {
    Pasteboard &pasteboard = *Platform::current().pasteboard;
    if (!pasteboard.unavailableBecause().isEmpty()) {
        tell({{},
              Mark::Problem,
              served(u"clipboard"_s),
              u"An X11 session, sway, Plasma, labwc or GNOME with XWayland have one that can be "
              "used."_s});
        return;
    }
    pasteboard.read([tell](const ClipboardContents &contents) {
        qsizetype types = 0;
        for (const PasteboardItem &item : contents.items.value_or(QList<PasteboardItem>()))
            types += item.size();
        tell({{},
              Mark::Ok,
              u"%1; read, it offers %2"_s.arg(served(u"clipboard"_s),
                                              types == 0 ? u"no text"_s
                                                         : u"text in %1 form(s)"_s.arg(types))});
    });
}

void Doctor::lookAtHotkey(const Circumstances &circumstances, const Tell &tell) {
    Hotkeys &hotkeys = *Platform::current().hotkeys;
    const KeyCombo combo = primaryHotkey();
    if (const auto choice = hotkeys.desktopsChoice()) {
        tell({{},
              Mark::Note,
              u"%1; the desktop has it: %2"_s.arg(served(u"hotkeys"_s), choice->text),
              choice->line});
    } else if (!hotkeys.unavailableBecause().isEmpty()) {
        tell({{},
              Mark::Problem,
              served(u"hotkeys"_s),
              u"Let a keyboard shortcut of the desktop run \"brindle paste\"."_s});
    } else if (circumstances.isRunningInstance) {
        tell(hotkeyFinding(HotkeyManager::shared().problemOf(combo), u"is in force"_s));
    } else if (!hotkeys.bindsSilently()) {
        tell({{},
              Mark::Note,
              u"%1; the desktop is asked for it when Brindle starts"_s.arg(served(u"hotkeys"_s))});
    } else {
        hotkeys.bind(
            {combo}, [] {}, nullptr,
            [tell](const QList<Hotkeys::Refusal> &refusals) {
                const QString problem =
                    refusals.isEmpty() ? QString() : refusals.constFirst().reason;
                Platform::current().dispatch->toMain([] { Platform::current().hotkeys->unbind(); });
                tell(hotkeyFinding(problem, u"can be had"_s));
            });
    }
}

void Doctor::lookAtPasteKeys(const Tell &tell) {
    const auto look = [tell] {
        PasteKeys &keys = *Platform::current().pasteKeys;
        const PasteAccess access = keys.access();
        if (access.state == PasteAccess::State::Ready) {
            tell({{}, Mark::Ok, served(u"paste keys"_s)});
            return;
        }
        const auto script = keys.scriptedPaste();
        if (script) {
            tell({{},
                  Mark::Note,
                  u"%1; %2 is called instead"_s.arg(access.reason, script->program)});
            return;
        }
        const QString advice =
            access.offer.isEmpty()
                ? u"Links are copied for you to paste with %1."_s.arg(wording().pasteKeys)
                : u"Choose \"%1\" in the preferences, General."_s.arg(access.offer);
        const QString by = served(u"paste keys"_s);
        const bool isSaid = by.contains(access.reason);
        tell({{}, Mark::Problem, isSaid ? by : u"%1; %2"_s.arg(by, access.reason), advice});
    };
    Platform::current().pasteKeys->whenAccessKnown(look);
}

void Doctor::lookAtFrontWindow(const Tell &tell) {
    Platform::current().frontWindow->find([tell](FrontWindow::Kind kind) {
        const QString by = served(u"front window"_s);
        switch (kind) {
        case FrontWindow::Kind::Application:
            tell({{}, Mark::Ok, u"%1; now it is no terminal"_s.arg(by)});
            return;
        case FrontWindow::Kind::Terminal:
            tell({{}, Mark::Ok, u"%1; now it is a terminal, which takes Ctrl+Shift+V"_s.arg(by)});
            return;
        case FrontWindow::Kind::Unknown:
            break;
        }
        tell({{}, Mark::Note, u"%1; not known now, so that Ctrl+V is pressed"_s.arg(by)});
    });
}

void Doctor::lookAtSecureInput(const Tell &tell) {
    constexpr std::chrono::milliseconds deadline(500);
    Platform::current().secureInput->check(deadline, [tell](SecureInput::Answer answer) {
        switch (answer) {
        case SecureInput::Answer::No:
            tell({{}, Mark::Ok, u"no password is being asked for now"_s});
            return;
        case SecureInput::Answer::Yes:
            tell({{},
                  Mark::Note,
                  u"a password field, a prompt or a locked screen has the keyboard now"_s,
                  u"Nothing is pasted as long as that is so."_s});
            return;
        case SecureInput::Answer::Unknown:
            break;
        }
        tell({{}, Mark::Note, u"nobody tells whether a password is being asked for"_s});
    });
}
