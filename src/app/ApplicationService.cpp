#include "app/ApplicationService.h"

#include "app/ActivationToken.h"
#include "app/DoctorService.h"
#include "model/AppInfo.h"
#include "platform/Platform.h"

#include <QDBusConnection>
#include <QDBusMessage>

namespace {

/// The name as an object path, as the interface wants it.
QString objectPath() {
    return u'/' + AppInfo::bundleIdentifier().replace(u'.', u'/');
}

} // namespace

ApplicationService::ApplicationService(std::function<void()> activate,
                                       QHash<QString, std::function<void()>> actions)
    : m_activate(std::move(activate)), m_actions(std::move(actions)) {
    new DoctorService(this); // adaptors belong to what they adapt
}

ApplicationService::Claim ApplicationService::claim() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return Claim::Taken;
    // The object first: who sees the name may call it at once.
    bus.registerObject(objectPath(), this,
                       QDBusConnection::ExportAllSlots | QDBusConnection::ExportAdaptors);
    if (bus.registerService(AppInfo::bundleIdentifier()))
        return Claim::Taken;
    QDBusMessage activate = QDBusMessage::createMethodCall(
        AppInfo::bundleIdentifier(), objectPath(), QStringLiteral("org.freedesktop.Application"),
        QStringLiteral("Activate"));
    activate << ActivationToken::platformData();
    constexpr int longestWait = 2000; // ms
    const QDBusMessage reply = bus.call(activate, QDBus::Block, longestWait);
    return reply.type() == QDBusMessage::ReplyMessage ? Claim::HandedOver : Claim::NoAnswer;
}

void ApplicationService::carryOut(const std::function<void()> &action,
                                  const QVariantMap &platformData) {
    // In a later turn, so that the caller has its answer first.
    Platform::current().dispatch->toMain([action, platformData] {
        const ActivationToken token(platformData);
        action();
    });
}

void ApplicationService::Activate(const QVariantMap &platformData) {
    carryOut(m_activate, platformData);
}

void ApplicationService::Open(const QStringList &, const QVariantMap &platformData) {
    // Brindle has no documents; a launcher that passes some means to start it.
    Activate(platformData);
}

void ApplicationService::ActivateAction(const QString &name, const QVariantList &,
                                        const QVariantMap &platformData) {
    if (const auto action = m_actions.value(name))
        carryOut(action, platformData);
}
