#pragma once

#include "model/Result.h"

#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

/// One way to get a capability from the desktop.
template <class Port>
struct Candidate {
    QString name; ///< as the log calls it
    /// The port, or why it is not to be had this way.
    std::function<Result<std::shared_ptr<Port>>()> make;
};

/// Takes the first of `candidates` that answers; the one that `otherwise` makes of the last reason
/// if none does. Appends to `report` one line that says what was chosen and what was passed over.
template <class Port>
std::shared_ptr<Port>
chooseFirst(const QString &capability, const std::vector<Candidate<Port>> &candidates,
            const std::function<std::shared_ptr<Port>(const QString &reason)> &otherwise,
            QStringList &report) {
    QStringList passedOver;
    QString reason = QStringLiteral("this desktop offers none that Brindle knows");
    for (const Candidate<Port> &candidate : candidates) {
        const auto port = candidate.make();
        if (port) {
            passedOver.prepend(QStringLiteral("%1: %2").arg(capability, candidate.name));
            report.append(passedOver.join(QStringLiteral("; ")));
            return *port;
        }
        reason = port.error();
        passedOver.append(QStringLiteral("not %1 (%2)").arg(candidate.name, reason));
    }
    passedOver.prepend(capability + QStringLiteral(": unavailable"));
    report.append(passedOver.join(QStringLiteral("; ")));
    return otherwise(reason);
}
