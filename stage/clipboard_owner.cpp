// Owns the clipboard of DISPLAY with the flavours it is given, properly or as badly as it is told.

#include "stage/Flavours.h"
#include "stage/JsonLines.h"
#include "stage/XConnection.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

enum class Manners { Normal, NeverAnswers, AnswersTargetsOnly, NeverRefuses, DiesMidTransfer };

struct Transfer {
    xcb_window_t requestor;
    xcb_atom_t property;
    const Flavour *flavour;
    qsizetype sent = 0;
    bool wanted = false; // the requestor has taken the last chunk
    QDeadlineTimer due;  // not before this the next one
};

class Owner {
public:
    Owner(QList<Flavour> flavours, Manners manners, qsizetype bytesPerSecond)
        : m_x(qEnvironmentVariable("DISPLAY")),
          m_flavours(std::move(flavours)),
          m_manners(manners),
          m_bytesPerSecond(bytesPerSecond) {}

    /// Owns the clipboard until the server goes; the exit code.
    int run() {
        if (!m_x.isValid() || !takeOwnership())
            return 1;
        say(u"owned"_s);
        while (m_x.isValid()) {
            if (const auto event = m_x.nextEvent(nextDue()))
                handle(event.get());
            sendDueChunks();
        }
        return 0;
    }

private:
    bool takeOwnership() {
        m_window = m_x.createWindow(XCB_EVENT_MASK_PROPERTY_CHANGE);
        m_time = m_x.serverTime(m_window).value_or(XCB_CURRENT_TIME);
        const xcb_atom_t clipboard = m_x.atom("CLIPBOARD");
        xcb_set_selection_owner(m_x.get(), m_window, clipboard, m_time);
        const XOwned<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
            m_x.get(), xcb_get_selection_owner(m_x.get(), clipboard), nullptr));
        return reply && reply->owner == m_window;
    }

    void handle(xcb_generic_event_t *event) {
        switch (event->response_type & 0x7f) {
        case XCB_SELECTION_CLEAR:
            return say(u"cleared"_s);
        case XCB_SELECTION_REQUEST:
            return request(*reinterpret_cast<xcb_selection_request_event_t *>(event));
        case XCB_PROPERTY_NOTIFY:
            return propertyChanged(*reinterpret_cast<xcb_property_notify_event_t *>(event));
        case XCB_DESTROY_NOTIFY:
            return requestorGone(reinterpret_cast<xcb_destroy_notify_event_t *>(event)->window);
        default: // an error comes of a requestor that has gone meanwhile
            return;
        }
    }

    void request(const xcb_selection_request_event_t &asked) {
        const QByteArray name = m_x.atomName(asked.target);
        const bool swallows = m_manners == Manners::NeverAnswers ||
                              (m_manners == Manners::AnswersTargetsOnly && name != "TARGETS") ||
                              (m_manners == Manners::NeverRefuses && !isOwned(name));
        say(swallows ? u"swallowed"_s : u"request"_s, {{u"target"_s, QString::fromLatin1(name)}});
        if (swallows)
            return;
        const xcb_atom_t property = asked.property ? asked.property : asked.target;
        const bool served = serve(name, asked.requestor, property);
        xcb_selection_notify_event_t answer{};
        answer.response_type = XCB_SELECTION_NOTIFY;
        answer.requestor = asked.requestor;
        answer.selection = asked.selection;
        answer.target = asked.target;
        answer.time = asked.time;
        answer.property = served ? property : xcb_atom_t(XCB_NONE);
        xcb_send_event(m_x.get(), 0, asked.requestor, 0, reinterpret_cast<const char *>(&answer));
    }

    bool isOwned(const QByteArray &name) const {
        return name == "TARGETS" || std::any_of(m_flavours.cbegin(), m_flavours.cend(),
                                                [&](const Flavour &f) { return f.name == name; });
    }

    // Puts the answer, or the beginning of one in chunks, into the requestor's property.
    bool serve(const QByteArray &name, xcb_window_t requestor, xcb_atom_t property) {
        if (name == "TARGETS") {
            QList<xcb_atom_t> names{m_x.atom("TARGETS"), m_x.atom("TIMESTAMP")};
            for (const Flavour &flavour : m_flavours)
                names.append(m_x.atom(flavour.name));
            put(requestor, property, XCB_ATOM_ATOM, 32, names.constData(), names.size());
            return true;
        }
        if (name == "TIMESTAMP") {
            put(requestor, property, XCB_ATOM_INTEGER, 32, &m_time, 1);
            return true;
        }
        const auto flavour = std::find_if(m_flavours.cbegin(), m_flavours.cend(),
                                          [&](const Flavour &each) { return each.name == name; });
        if (flavour == m_flavours.cend())
            return false;
        if (flavour->data.size() > chunkSize() || m_manners == Manners::DiesMidTransfer) {
            beginChunks(*flavour, requestor, property);
            return true;
        }
        put(requestor, property, m_x.atom(flavour->type), 8, flavour->data.constData(),
            flavour->data.size());
        served(*flavour);
        return true;
    }

    void beginChunks(const Flavour &flavour, xcb_window_t requestor, xcb_atom_t property) {
        const uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(m_x.get(), requestor, XCB_CW_EVENT_MASK, &mask);
        const auto size = static_cast<uint32_t>(flavour.data.size());
        put(requestor, property, m_x.atom("INCR"), 32, &size, 1);
        m_transfers.append({requestor, property, &flavour, 0, false, {}});
    }

    void propertyChanged(const xcb_property_notify_event_t &change) {
        for (Transfer &transfer : m_transfers) {
            if (transfer.requestor != change.window || transfer.property != change.atom ||
                change.state != XCB_PROPERTY_DELETE)
                continue;
            transfer.wanted = true;
            transfer.due = QDeadlineTimer(m_bytesPerSecond ? 1000 / chunksPerSecond : 0);
        }
    }

    void sendDueChunks() {
        for (qsizetype i = m_transfers.size() - 1; i >= 0; --i) {
            if (m_transfers[i].wanted && m_transfers[i].due.hasExpired() &&
                !sendChunk(m_transfers[i]))
                m_transfers.removeAt(i);
        }
        xcb_flush(m_x.get());
    }

    // False when that was the empty chunk that ends it.
    bool sendChunk(Transfer &transfer) {
        const Flavour &flavour = *transfer.flavour;
        const qsizetype size = std::min(chunkSize(), flavour.data.size() - transfer.sent);
        put(transfer.requestor, transfer.property, m_x.atom(flavour.type), 8,
            flavour.data.constData() + transfer.sent, size);
        transfer.sent += size;
        transfer.wanted = false;
        if (m_manners == Manners::DiesMidTransfer) {
            m_x.sync();
            std::_Exit(0);
        }
        if (size == 0)
            served(flavour);
        return size > 0;
    }

    void requestorGone(xcb_window_t window) {
        m_transfers.removeIf([&](const Transfer &each) { return each.requestor == window; });
    }

    QDeadlineTimer nextDue() const {
        QDeadlineTimer next(QDeadlineTimer::Forever);
        for (const Transfer &transfer : m_transfers) {
            if (transfer.wanted)
                next = std::min(next, transfer.due);
        }
        return next;
    }

    qsizetype chunkSize() const {
        constexpr qsizetype usual = 131072;
        return m_bytesPerSecond ? std::max<qsizetype>(1, m_bytesPerSecond / chunksPerSecond)
                                : usual;
    }

    void put(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, uint8_t format,
             const void *data, qsizetype count) {
        xcb_change_property(m_x.get(), XCB_PROP_MODE_REPLACE, window, property, type, format,
                            static_cast<uint32_t>(count), data);
    }

    static void served(const Flavour &flavour) {
        say(u"served"_s,
            {{u"target"_s, QString::fromLatin1(flavour.name)}, {u"bytes"_s, flavour.data.size()}});
    }

    static constexpr qsizetype chunksPerSecond = 10;

    XConnection m_x;
    const QList<Flavour> m_flavours; // transfers point into it
    Manners m_manners;
    qsizetype m_bytesPerSecond; // 0 is as fast as it goes
    xcb_window_t m_window = XCB_NONE;
    xcb_timestamp_t m_time = XCB_CURRENT_TIME;
    QList<Transfer> m_transfers;
};

} // namespace

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addOptions({{u"flavour"_s, u"name[>type]=text or =@file, in order"_s, u"flavour"_s},
                       {u"never-answer"_s, u"swallow every request"_s},
                       {u"targets-only"_s, u"swallow every request but TARGETS"_s},
                       {u"never-refuse"_s, u"swallow requests for what is not there"_s},
                       {u"slow"_s, u"send in small chunks"_s, u"bytes per second"_s, u"0"_s},
                       {u"die-mid-transfer"_s, u"exit after the first chunk"_s}});
    parser.process(application);
    const auto flavours = parseFlavours(parser.values(u"flavour"_s));
    if (!flavours)
        return 2;
    const Manners manners = parser.isSet(u"never-answer"_s)       ? Manners::NeverAnswers
                            : parser.isSet(u"targets-only"_s)     ? Manners::AnswersTargetsOnly
                            : parser.isSet(u"never-refuse"_s)     ? Manners::NeverRefuses
                            : parser.isSet(u"die-mid-transfer"_s) ? Manners::DiesMidTransfer
                                                                  : Manners::Normal;
    return Owner(*flavours, manners, parser.value(u"slow"_s).toLongLong()).run();
}
