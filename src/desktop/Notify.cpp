#include "desktop/Notify.h"

#include "platform/Platform.h"
#include "storage/LogStore.h"

void Notify::show(const QString &title, const QString &message) {
    log(QStringLiteral("notify: ") + message);
    // One line, as every notification of ours is meant to be read at a glance.
    QString body = message;
    body.replace(u'\n', u' ').replace(u'\r', u' ');
    Platform::current().notifications->show(title, body, [](const QString &reason) {
        log(QStringLiteral("notify: notification failed: ") + reason);
    });
}
