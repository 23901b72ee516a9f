#include "stage/KeyringPrompter.h"

namespace {
const QString name = "org.gnome.keyring.SystemPrompter";
const QString path = "/org/gnome/keyring/Prompter";
} // namespace

KeyringPrompter::KeyringPrompter(const QDBusConnection &bus) : m_bus(bus) {
    m_bus.registerObject(path, this, QDBusConnection::ExportScriptableSlots);
    m_bus.registerService(name);
}

KeyringPrompter::~KeyringPrompter() {
    dismissOpen();
    m_bus.unregisterService(name);
    m_bus.unregisterObject(path);
}

void KeyringPrompter::BeginPrompting(const QDBusObjectPath &callback, const QDBusMessage &call) {
    tell(callback, call, "PromptReady", {QString(), QVariantMap(), QString()});
}

void KeyringPrompter::PerformPrompt(const QDBusObjectPath &callback, const QString &,
                                    const QVariantMap &, const QString &,
                                    const QDBusMessage &call) {
    ++opened;
    m_open.append({callback, call});
    if (dismisses)
        dismissOpen();
}

void KeyringPrompter::dismissOpen() {
    for (const auto &[callback, call] : std::exchange(m_open, {}))
        tell(callback, call, "PromptReady", {"no", QVariantMap(), QString()});
}

void KeyringPrompter::StopPrompting(const QDBusObjectPath &callback, const QDBusMessage &call) {
    tell(callback, call, "PromptDone", {});
}

void KeyringPrompter::tell(const QDBusObjectPath &callback, const QDBusMessage &call,
                           const QString &method, const QVariantList &arguments) const {
    // What was called is answered first; the keyring takes nothing before that.
    call.setDelayedReply(true);
    m_bus.send(call.createReply());
    QDBusMessage message = QDBusMessage::createMethodCall(
        call.service(), callback.path(), "org.gnome.keyring.internal.Prompter.Callback", method);
    message.setArguments(arguments);
    m_bus.send(message);
}
