#include "platform/wayland/WaylandEventSource.h"

#include <QAbstractEventDispatcher>
#include <QObject>
#include <QSocketNotifier>

namespace {

/// A connection and what calls it.
struct ServedConnection {
    ServedConnection() {
        if (!wayland.isOpen())
            return;
        const int descriptor = wayland.descriptor();
        readable = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
        writable = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Write);
        const auto serve = [this] {
            wayland.handleEvents();
            readable->setEnabled(wayland.isOpen());
            writable->setEnabled(wayland.hasUnsent());
        };
        QObject::connect(readable.get(), &QSocketNotifier::activated, readable.get(), serve);
        QObject::connect(writable.get(), &QSocketNotifier::activated, readable.get(), serve);
        // What was asked since must be sent before the loop sleeps.
        if (auto *dispatcher = QAbstractEventDispatcher::instance())
            QObject::connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, readable.get(),
                             serve);
        serve();
    }

    WaylandConnection wayland;
    std::unique_ptr<QSocketNotifier> readable;
    std::unique_ptr<QSocketNotifier> writable;
};

} // namespace

std::shared_ptr<WaylandConnection> connectToWayland() {
    const auto served = std::make_shared<ServedConnection>();
    return {served, &served->wayland};
}
