#include "platform/x11/X11EventSource.h"

#include <QAbstractEventDispatcher>
#include <QObject>
#include <QSocketNotifier>

namespace {

/// A connection and what calls it.
struct ServedConnection {
    ServedConnection() {
        if (!x11.isOpen())
            return;
        notifier = std::make_unique<QSocketNotifier>(x11.descriptor(), QSocketNotifier::Read);
        const auto process = [this] {
            x11.processEvents();
            if (x11.isBroken())
                notifier->setEnabled(false);
        };
        QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(), process);
        // Waiting for a reply may have read events too; they would lie there until the next one
        // arrives.
        if (auto *dispatcher = QAbstractEventDispatcher::instance())
            QObject::connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, notifier.get(),
                             process);
    }

    X11Connection x11;
    std::unique_ptr<QSocketNotifier> notifier;
};

} // namespace

std::shared_ptr<X11Connection> connectToX11() {
    const auto served = std::make_shared<ServedConnection>();
    return served->x11.isOpen() ? std::shared_ptr<X11Connection>(served, &served->x11) : nullptr;
}
