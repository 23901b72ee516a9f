// Owns the clipboard of a Wayland desktop with the flavours it is given, properly or as badly as it
// is told. The events are those of clipboard_owner.

#include "stage/CompositorConnection.h"
#include "stage/Flavours.h"
#include "stage/JsonLines.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <wlr-data-control-unstable-v1.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

struct Manners {
    bool neverAnswers = false;
    bool closesEarly = false;
    bool diesMidTransfer = false;
    qsizetype bytesPerSecond = 0; // 0 is as fast as it goes
};

struct Transfer {
    int file;
    const Flavour *flavour;
    qsizetype sent = 0;
    QDeadlineTimer due = {}; // not before this the next piece
};

constexpr int piecesPerSecond = 10;

class Owner {
public:
    Owner(QList<Flavour> flavours, Manners manners)
        : m_compositor(CompositorConnection::socketOfEnvironment()),
          m_flavours(std::move(flavours)),
          m_manners(manners) {}

    /// Owns the clipboard until the compositor goes; the exit code.
    int run() {
        if (!takeOwnership())
            return 1;
        say(u"owned"_s);
        while (await()) {
            for (qsizetype i = m_transfers.size() - 1; i >= 0; --i) {
                if (m_transfers[i].due.hasExpired() && !sendPiece(m_transfers[i])) {
                    close(m_transfers[i].file);
                    m_transfers.removeAt(i);
                }
            }
        }
        return 0;
    }

private:
    bool takeOwnership() {
        auto *manager = static_cast<zwlr_data_control_manager_v1 *>(
            m_compositor.bind(zwlr_data_control_manager_v1_interface, 2));
        if (!manager || !m_compositor.seat())
            return false;
        auto *device = zwlr_data_control_manager_v1_get_data_device(manager, m_compositor.seat());
        auto *source = zwlr_data_control_manager_v1_create_data_source(manager);
        static constexpr zwlr_data_control_source_v1_listener listener{requested, cancelled};
        zwlr_data_control_source_v1_add_listener(source, &listener, this);
        for (const Flavour &flavour : m_flavours) {
            zwlr_data_control_source_v1_offer(source, flavour.name.constData());
            // A thousand names fill the pipe to the compositor.
            if (!m_compositor.sync())
                return false;
        }
        zwlr_data_control_device_v1_set_selection(device, source);
        return m_compositor.sync();
    }

    // Until something can be done; false once the compositor has gone.
    bool await() {
        QDeadlineTimer next(QDeadlineTimer::Forever);
        int full = -1; // a pipe that is waited for
        for (const Transfer &transfer : m_transfers) {
            next = std::min(next, transfer.due);
            full = transfer.file;
        }
        if (m_transfers.isEmpty() || next.remainingTime() > 0)
            return m_compositor.serve(next);
        pollfd pipe{full, POLLOUT, 0};
        constexpr int shortly = 5; // milliseconds, for the other pipes
        poll(&pipe, 1, shortly);
        return m_compositor.serve(QDeadlineTimer(0));
    }

    static void requested(void *self, zwlr_data_control_source_v1 *, const char *name, int file) {
        static_cast<Owner *>(self)->request(name, file);
    }

    void request(const QByteArray &name, int file) {
        say(m_manners.neverAnswers ? u"swallowed"_s : u"request"_s,
            {{u"target"_s, QString::fromLatin1(name)}});
        const auto flavour = std::find_if(m_flavours.cbegin(), m_flavours.cend(),
                                          [&](const Flavour &each) { return each.name == name; });
        if (m_manners.neverAnswers)
            return; // and never closes it
        fcntl(file, F_SETFL, O_NONBLOCK);
        if (flavour == m_flavours.cend())
            close(file);
        else
            m_transfers.append({file, &*flavour});
    }

    static void cancelled(void *, zwlr_data_control_source_v1 *source) {
        zwlr_data_control_source_v1_destroy(source);
        say(u"cleared"_s);
    }

    // False when that was the last one.
    bool sendPiece(Transfer &transfer) {
        const QByteArray &data = transfer.flavour->data;
        constexpr qsizetype usual = 131072;
        const qsizetype most =
            m_manners.bytesPerSecond > 0
                ? std::max<qsizetype>(1, m_manners.bytesPerSecond / piecesPerSecond)
                : usual;
        const qsizetype size = std::min(most, data.size() - transfer.sent);
        const ssize_t count =
            write(transfer.file, data.constData() + transfer.sent, static_cast<size_t>(size));
        if (count < 0)
            return errno == EAGAIN;
        transfer.sent += count;
        if (m_manners.diesMidTransfer)
            std::_Exit(0);
        if (m_manners.closesEarly)
            return false;
        if (m_manners.bytesPerSecond > 0)
            transfer.due = QDeadlineTimer(1000 / piecesPerSecond);
        if (transfer.sent < data.size())
            return true;
        say(u"served"_s, {{u"target"_s, QString::fromLatin1(transfer.flavour->name)},
                          {u"bytes"_s, data.size()}});
        return false;
    }

    CompositorConnection m_compositor;
    const QList<Flavour> m_flavours; // transfers point into it
    Manners m_manners;
    QList<Transfer> m_transfers;
};

} // namespace

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addOptions({{u"flavour"_s, u"name=text or =@file, in order"_s, u"flavour"_s},
                       {u"many"_s, u"offer that many more"_s, u"number"_s, u"0"_s},
                       {u"never-answer"_s, u"keep every request open"_s},
                       {u"slow"_s, u"send in small pieces"_s, u"bytes per second"_s, u"0"_s},
                       {u"close-early"_s, u"end each transfer after its first piece"_s},
                       {u"die-mid-transfer"_s, u"exit after the first piece"_s}});
    parser.process(application);
    auto flavours = parseFlavours(parser.values(u"flavour"_s));
    if (!flavours)
        return 2;
    for (int i = 0; i < parser.value(u"many"_s).toInt(); ++i)
        flavours->append({"application/x-number-" + QByteArray::number(i), {}, "number"});
    std::signal(SIGPIPE, SIG_IGN); // somebody who does not read on
    return Owner(*flavours, {.neverAnswers = parser.isSet(u"never-answer"_s),
                             .closesEarly = parser.isSet(u"close-early"_s),
                             .diesMidTransfer = parser.isSet(u"die-mid-transfer"_s),
                             .bytesPerSecond = parser.value(u"slow"_s).toLongLong()})
        .run();
}
