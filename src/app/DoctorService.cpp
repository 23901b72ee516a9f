#include "app/DoctorService.h"

#include "app/Doctor.h"

#include <QDBusConnection>

void DoctorService::Examine(bool network, const QDBusMessage &call) {
    call.setDelayedReply(true);
    Doctor::examine({.isRunningInstance = true, .network = network},
                    [call](const Diagnosis &diagnosis) {
                        QDBusConnection::sessionBus().send(
                            call.createReply({diagnosis.isGood(), diagnosis.text()}));
                    });
}
