#include "stage/ClipboardReader.h"

using namespace Qt::StringLiterals;

/// One conversion, with a window of its own so that late answers to an earlier one stay apart.
class ClipboardReader::Request {
public:
    Request(XConnection &x, int milliseconds)
        : m_x(x),
          m_deadline(milliseconds),
          m_window(x.createWindow(XCB_EVENT_MASK_PROPERTY_CHANGE)),
          m_property(x.atom("BRINDLE_TEST_DATA")) {}
    ~Request() {
        xcb_destroy_window(m_x.get(), m_window);
        xcb_flush(m_x.get());
    }
    Request(const Request &) = delete;
    Request &operator=(const Request &) = delete;

    // True when the owner has put something into our property.
    bool convert(const QByteArray &target, QString &problem) {
        const auto time = m_x.serverTime(m_window);
        xcb_convert_selection(m_x.get(), m_window, m_x.atom("CLIPBOARD"), m_x.atom(target),
                              m_property, time.value_or(XCB_CURRENT_TIME));
        const auto event = next(XCB_SELECTION_NOTIFY, [this](const xcb_generic_event_t *any) {
            return reinterpret_cast<const xcb_selection_notify_event_t *>(any)->requestor ==
                   m_window;
        });
        const auto *answer = reinterpret_cast<xcb_selection_notify_event_t *>(event.get());
        if (!answer)
            problem = u"no answer"_s;
        else if (answer->property == XCB_NONE)
            problem = u"refused"_s;
        return problem.isEmpty();
    }

    // Takes what is in the property; reading it is what asks for the next chunk of an INCR.
    XOwned<xcb_get_property_reply_t> take() {
        return XOwned<xcb_get_property_reply_t>(
            xcb_get_property_reply(m_x.get(),
                                   xcb_get_property(m_x.get(), 1, m_window, m_property,
                                                    XCB_GET_PROPERTY_TYPE_ANY, 0, 0x1fffffff),
                                   nullptr));
    }

    // True when the owner has put in another chunk.
    bool awaitChunk() {
        return next(XCB_PROPERTY_NOTIFY, [this](const xcb_generic_event_t *any) {
                   const auto *change = reinterpret_cast<const xcb_property_notify_event_t *>(any);
                   return change->window == m_window && change->atom == m_property &&
                          change->state == XCB_PROPERTY_NEW_VALUE;
               }) != nullptr;
    }

private:
    template <typename Wanted>
    XOwned<xcb_generic_event_t> next(uint8_t type, Wanted isWanted) {
        while (auto event = m_x.nextEvent(m_deadline)) {
            if ((event->response_type & 0x7f) == type && isWanted(event.get()))
                return event;
        }
        return nullptr;
    }

    XConnection &m_x;
    QDeadlineTimer m_deadline;
    xcb_window_t m_window;
    xcb_atom_t m_property;
};

ClipboardReader::ClipboardReader(const QString &display, int milliseconds)
    : m_x(display), m_milliseconds(milliseconds) {}

xcb_window_t ClipboardReader::owner() const {
    if (!m_x.isValid())
        return XCB_NONE;
    const XOwned<xcb_intern_atom_reply_t> clipboard(
        xcb_intern_atom_reply(m_x.get(), xcb_intern_atom(m_x.get(), 0, 9, "CLIPBOARD"), nullptr));
    const XOwned<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        m_x.get(), xcb_get_selection_owner(m_x.get(), clipboard ? clipboard->atom : 0), nullptr));
    return reply ? reply->owner : xcb_window_t(XCB_NONE);
}

std::optional<QStringList> ClipboardReader::targets() {
    const auto bytes = read("TARGETS");
    if (!bytes)
        return std::nullopt;
    QStringList names;
    const auto *atoms = reinterpret_cast<const xcb_atom_t *>(bytes->constData());
    for (qsizetype i = 0; i < bytes->size() / qsizetype(sizeof(xcb_atom_t)); ++i)
        names.append(QString::fromLatin1(m_x.atomName(atoms[i])));
    return names;
}

std::optional<QByteArray> ClipboardReader::data(const QString &target) {
    return read(target.toLatin1());
}

std::optional<QByteArray> ClipboardReader::read(const QByteArray &target) {
    m_type.clear();
    m_problem = m_x.isValid() ? QString() : u"no display"_s;
    if (!m_problem.isEmpty())
        return std::nullopt;
    Request request(m_x, m_milliseconds);
    if (!request.convert(target, m_problem))
        return std::nullopt;
    auto piece = request.take();
    const bool inChunks = piece && piece->type == m_x.atom("INCR");
    if (piece && !inChunks)
        return contentOf(*piece);
    QByteArray bytes;
    while (inChunks && request.awaitChunk() && (piece = request.take())) {
        if (xcb_get_property_value_length(piece.get()) == 0)
            return bytes;
        bytes += contentOf(*piece);
    }
    m_problem = u"stopped after %1 bytes"_s.arg(bytes.size());
    return std::nullopt;
}

QByteArray ClipboardReader::contentOf(xcb_get_property_reply_t &piece) {
    m_type = QString::fromLatin1(m_x.atomName(piece.type));
    return {static_cast<const char *>(xcb_get_property_value(&piece)),
            xcb_get_property_value_length(&piece)};
}
