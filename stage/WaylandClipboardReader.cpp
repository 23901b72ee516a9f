#include "stage/WaylandClipboardReader.h"

#include <QFile>

#include <wlr-data-control-unstable-v1.h>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

using Offer = zwlr_data_control_offer_v1;
using Device = zwlr_data_control_device_v1;

struct WaylandClipboardReader::Listeners {
    static void named(void *self, Offer *offer, const char *name) {
        of(self).m_offers[offer].append(QString::fromUtf8(name));
    }
    static void offered(void *self, Device *, Offer *offer) {
        static constexpr zwlr_data_control_offer_v1_listener listener{named};
        of(self).m_offers.insert(offer, {});
        zwlr_data_control_offer_v1_add_listener(offer, &listener, self);
    }
    static void selected(void *self, Device *, Offer *offer) {
        forget(self, of(self).m_selection);
        of(self).m_selection = offer;
    }
    static void selectedByMouse(void *self, Device *, Offer *offer) { forget(self, offer); }
    static void finished(void *, Device *) {}

    static void forget(void *self, Offer *offer) {
        if (offer && of(self).m_offers.remove(offer))
            zwlr_data_control_offer_v1_destroy(offer);
    }
    static WaylandClipboardReader &of(void *self) {
        return *static_cast<WaylandClipboardReader *>(self);
    }
};

WaylandClipboardReader::WaylandClipboardReader(const QString &socket, int milliseconds)
    : m_compositor(QFile::encodeName(socket)), m_milliseconds(milliseconds) {
    auto *manager = static_cast<zwlr_data_control_manager_v1 *>(
        m_compositor.bind(zwlr_data_control_manager_v1_interface, 2));
    if (!manager || !m_compositor.seat())
        return;
    static constexpr zwlr_data_control_device_v1_listener listener{
        Listeners::offered, Listeners::selected, Listeners::finished, Listeners::selectedByMouse};
    m_device = zwlr_data_control_manager_v1_get_data_device(manager, m_compositor.seat());
    zwlr_data_control_device_v1_add_listener(m_device, &listener, this);
    zwlr_data_control_manager_v1_destroy(manager);
}

WaylandClipboardReader::~WaylandClipboardReader() {
    for (auto offer = m_offers.keyBegin(); offer != m_offers.keyEnd(); ++offer)
        zwlr_data_control_offer_v1_destroy(*offer);
    if (m_device)
        zwlr_data_control_device_v1_destroy(m_device);
}

std::optional<QStringList> WaylandClipboardReader::targets() {
    m_problem.clear();
    if (!m_device || !m_compositor.sync())
        m_problem = u"no compositor"_s;
    else if (!m_selection)
        m_problem = u"no owner"_s;
    return m_problem.isEmpty() ? std::optional(m_offers.value(m_selection)) : std::nullopt;
}

std::optional<QByteArray> WaylandClipboardReader::data(const QString &target) {
    const auto names = targets();
    if (names && !names->contains(target))
        m_problem = u"not on offer"_s;
    int ends[2];
    if (!m_problem.isEmpty() || pipe2(ends, O_CLOEXEC) != 0)
        return std::nullopt;
    zwlr_data_control_offer_v1_receive(m_selection, target.toUtf8().constData(), ends[1]);
    wl_display_flush(m_compositor.get());
    close(ends[1]);
    auto bytes = readAll(ends[0]);
    close(ends[0]);
    return bytes;
}

std::optional<QByteArray> WaylandClipboardReader::readAll(int file) {
    const QDeadlineTimer deadline(m_milliseconds);
    QByteArray bytes;
    for (;;) {
        pollfd source{file, POLLIN, 0};
        if (poll(&source, 1, static_cast<int>(deadline.remainingTime())) <= 0)
            break;
        char buffer[65536];
        const ssize_t count = read(file, buffer, sizeof buffer);
        if (count == 0)
            return bytes;
        if (count > 0)
            bytes.append(buffer, count);
    }
    m_problem = u"stopped after %1 bytes"_s.arg(bytes.size());
    return std::nullopt;
}
