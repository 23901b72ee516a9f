#include "desktop/LoginItem.h"

#include "desktop/Notify.h"
#include "model/AppInfo.h"
#include "platform/Platform.h"
#include "storage/LogStore.h"

namespace {

QString describe(LoginItems::Status status) {
    switch (status) {
    case LoginItems::Status::NotRegistered:
        return QStringLiteral("notRegistered");
    case LoginItems::Status::Enabled:
        return QStringLiteral("enabled");
    case LoginItems::Status::RequiresApproval:
        return QStringLiteral("requiresApproval");
    case LoginItems::Status::NotFound:
        return QStringLiteral("notFound");
    }
    return QStringLiteral("unknown(%1)").arg(static_cast<int>(status));
}

} // namespace

bool LoginItem::isEnabled() {
    const auto status = Platform::current().loginItems->status();
    log(QStringLiteral("LoginItem.isEnabled: status = ") + describe(status));
    return status == LoginItems::Status::Enabled || status == LoginItems::Status::RequiresApproval;
}

bool LoginItem::setEnabled(bool enabled) {
    LoginItems &items = *Platform::current().loginItems;
    const QString operation = enabled ? QStringLiteral("LoginItem.setEnabled(true): ")
                                      : QStringLiteral("LoginItem.setEnabled(false): ");
    const QString error = enabled ? items.add() : items.remove();
    if (!error.isEmpty()) {
        log(operation + QStringLiteral("error ") + error);
        Notify::show(AppInfo::displayName(),
                     QStringLiteral("Launch at login change failed: ") + error);
        return false;
    }
    log(operation + (enabled ? QStringLiteral("registered") : QStringLiteral("unregistered")) +
        QStringLiteral(", status now ") + describe(items.status()));
    return true;
}
