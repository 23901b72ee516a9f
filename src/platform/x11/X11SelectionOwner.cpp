#include "platform/x11/X11SelectionOwner.h"

#include <algorithm>
#include <utility>

namespace {

/// The most that goes out at once; what is larger goes in pieces of this size. Well under what
/// every server takes in one request.
constexpr qsizetype pieceSize = qsizetype{256} * 1024;

/// How long a clipboard manager may take to copy everything, and to ask for the next piece.
constexpr std::chrono::seconds longestHandOver{3};
constexpr std::chrono::milliseconds longestSilence{250};

/// A requestor that lets this pass between two pieces has given up.
constexpr std::chrono::seconds longestStall{10};

} // namespace

X11SelectionOwner::X11SelectionOwner(X11Connection &x11, xcb_atom_t selection, News news)
    : m_x11(x11), m_selection(selection), m_news(std::move(news)) {
    m_x11.addHandler([this](const xcb_generic_event_t &event) { return handle(event); });
}

bool X11SelectionOwner::own(const PasteboardItem &contents, xcb_timestamp_t time) {
    QList<QByteArray> names;
    for (const PasteboardRepresentation &representation : contents)
        names << representation.name << representation.encoding;
    names.removeAll(QByteArray());
    m_x11.atoms(names); // those that are new, in one go
    xcb_set_selection_owner(m_x11, m_x11.window(), m_selection, time);
    const auto cookie = xcb_get_selection_owner(m_x11, m_selection);
    const XcbPtr<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(m_x11, cookie, nullptr));
    m_isOwner = reply && reply->owner == m_x11.window();
    m_contents = m_isOwner ? contents : PasteboardItem();
    m_claimTime = time;
    m_latestFetch.reset();
    tell();
    return m_isOwner;
}

void X11SelectionOwner::lost() {
    if (!std::exchange(m_isOwner, false))
        return;
    m_contents.clear();
    tell();
}

void X11SelectionOwner::tell() {
    m_news({m_isOwner, m_latestFetch, !m_transfers.isEmpty()});
}

bool X11SelectionOwner::isOwnClaim(const xcb_xfixes_selection_notify_event_t &event) const {
    return event.owner == m_x11.window() && event.selection_timestamp <= m_claimTime;
}

void X11SelectionOwner::handOver() {
    const xcb_atom_t manager = m_x11.atom("CLIPBOARD_MANAGER");
    const XcbPtr<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(m_x11, xcb_get_selection_owner(m_x11, manager), nullptr));
    if (!reply || reply->owner == XCB_WINDOW_NONE)
        return;
    QList<xcb_atom_t> targets;
    for (const PasteboardRepresentation &representation : m_contents)
        targets.append(m_x11.atom(representation.name));
    const xcb_atom_t property = m_x11.atom("BRINDLE_HAND_OVER");
    xcb_change_property(m_x11, XCB_PROP_MODE_REPLACE, m_x11.window(), property, XCB_ATOM_ATOM, 32,
                        static_cast<uint32_t>(targets.size()), targets.constData());
    xcb_convert_selection(m_x11, m_x11.window(), manager, m_x11.atom("SAVE_TARGETS"), property,
                          m_x11.freshTimestamp());
    m_isHandingOver = true;
    m_lastSign = X11Connection::Clock::now();
    const auto latest = m_lastSign + longestHandOver;
    m_x11.waitUntil([this] { return !m_isHandingOver; },
                    [this, latest] { return std::min(latest, m_lastSign + longestSilence); });
}

bool X11SelectionOwner::handle(const xcb_generic_event_t &event) {
    switch (event.response_type & 0x7f) {
    case XCB_SELECTION_REQUEST: {
        const auto &request = reinterpret_cast<const xcb_selection_request_event_t &>(event);
        if (request.selection != m_selection)
            return false;
        selectionRequest(request);
        return true;
    }
    case XCB_SELECTION_CLEAR: {
        const auto &clear = reinterpret_cast<const xcb_selection_clear_event_t &>(event);
        // One from before our latest claim is about an earlier one.
        if (clear.selection == m_selection && clear.time >= m_claimTime)
            lost();
        return clear.selection == m_selection;
    }
    case XCB_PROPERTY_NOTIFY: {
        const auto &notify = reinterpret_cast<const xcb_property_notify_event_t &>(event);
        return notify.state == XCB_PROPERTY_DELETE && sendNextPiece(notify.window, notify.atom);
    }
    case XCB_SELECTION_NOTIFY: {
        const auto &notify = reinterpret_cast<const xcb_selection_notify_event_t &>(event);
        if (notify.selection != m_x11.atom("CLIPBOARD_MANAGER"))
            return false;
        m_isHandingOver = false;
        return true;
    }
    case XCB_DESTROY_NOTIFY:
        forgetTransfersTo(reinterpret_cast<const xcb_destroy_notify_event_t &>(event).window);
        return true;
    default:
        return false;
    }
}

void X11SelectionOwner::selectionRequest(const xcb_selection_request_event_t &request) {
    m_lastSign = X11Connection::Clock::now();
    // Requestors from before ICCCM leave the property out and mean the target.
    const xcb_atom_t property =
        request.property == XCB_ATOM_NONE ? request.target : request.property;
    const bool given = m_isOwner && answer(request.requestor, request.target, property);

    xcb_selection_notify_event_t notify{};
    notify.response_type = XCB_SELECTION_NOTIFY;
    notify.time = request.time;
    notify.requestor = request.requestor;
    notify.selection = request.selection;
    notify.target = request.target;
    notify.property = given ? property : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    xcb_send_event(m_x11, 0, request.requestor, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char *>(&notify));
    xcb_flush(m_x11);
}

bool X11SelectionOwner::answer(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property) {
    if (target == m_x11.atom("TARGETS"))
        return answerTargets(requestor, property);
    if (target == m_x11.atom("MULTIPLE"))
        return answerMultiple(requestor, property);
    if (target == m_x11.atom("TIMESTAMP")) {
        xcb_change_property(m_x11, XCB_PROP_MODE_REPLACE, requestor, property, XCB_ATOM_INTEGER, 32,
                            1, &m_claimTime);
        return true;
    }
    for (const PasteboardRepresentation &representation : m_contents) {
        if (m_x11.atom(representation.name) == target) {
            m_latestFetch = Dispatch::Clock::now();
            send(requestor, property, representation);
            tell();
            return true;
        }
    }
    return false;
}

bool X11SelectionOwner::answerTargets(xcb_window_t requestor, xcb_atom_t property) {
    QList<xcb_atom_t> targets{m_x11.atom("TARGETS"), m_x11.atom("TIMESTAMP"),
                              m_x11.atom("MULTIPLE")};
    for (const PasteboardRepresentation &representation : m_contents)
        targets.append(m_x11.atom(representation.name));
    xcb_change_property(m_x11, XCB_PROP_MODE_REPLACE, requestor, property, XCB_ATOM_ATOM, 32,
                        static_cast<uint32_t>(targets.size()), targets.constData());
    return true;
}

bool X11SelectionOwner::answerMultiple(xcb_window_t requestor, xcb_atom_t property) {
    constexpr uint32_t mostPairs = 256;
    const auto cookie = xcb_get_property(m_x11, 0, requestor, property, XCB_GET_PROPERTY_TYPE_ANY,
                                         0, 2 * mostPairs);
    const XcbPtr<xcb_get_property_reply_t> reply(xcb_get_property_reply(m_x11, cookie, nullptr));
    if (!reply || reply->format != 32)
        return false;
    const auto *atoms = static_cast<const xcb_atom_t *>(xcb_get_property_value(reply.get()));
    QList<xcb_atom_t> pairs(atoms, atoms + reply->value_len);
    for (qsizetype i = 0; i + 1 < pairs.size(); i += 2) {
        const bool nested = pairs[i] == m_x11.atom("MULTIPLE");
        if (nested || !answer(requestor, pairs[i], pairs[i + 1]))
            pairs[i + 1] = XCB_ATOM_NONE;
    }
    xcb_change_property(m_x11, XCB_PROP_MODE_REPLACE, requestor, property, reply->type, 32,
                        static_cast<uint32_t>(pairs.size()), pairs.constData());
    return true;
}

void X11SelectionOwner::send(xcb_window_t requestor, xcb_atom_t property,
                             const PasteboardRepresentation &representation) {
    const xcb_atom_t type = m_x11.atom(representation.encoding.isEmpty() ? representation.name
                                                                         : representation.encoding);
    if (representation.data.size() <= pieceSize) {
        xcb_change_property(m_x11, XCB_PROP_MODE_REPLACE, requestor, property, type, 8,
                            static_cast<uint32_t>(representation.data.size()),
                            representation.data.constData());
        return;
    }
    forgetStalledTransfers();
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_x11, requestor, XCB_CW_EVENT_MASK, &events);
    m_transfers.append(
        {requestor, property, type, representation.data, 0, X11Connection::Clock::now()});
    const auto size = static_cast<uint32_t>(
        std::min<qsizetype>(representation.data.size(), std::numeric_limits<int32_t>::max()));
    xcb_change_property(m_x11, XCB_PROP_MODE_REPLACE, requestor, property, m_x11.atom("INCR"), 32,
                        1, &size);
}

bool X11SelectionOwner::sendNextPiece(xcb_window_t requestor, xcb_atom_t property) {
    const auto transfer =
        std::find_if(m_transfers.begin(), m_transfers.end(), [&](const Transfer &candidate) {
            return candidate.requestor == requestor && candidate.property == property;
        });
    if (transfer == m_transfers.end())
        return false;
    const qsizetype size = std::min(pieceSize, transfer->data.size() - transfer->sent);
    xcb_change_property(m_x11, XCB_PROP_MODE_REPLACE, requestor, property, transfer->type, 8,
                        static_cast<uint32_t>(size), transfer->data.constData() + transfer->sent);
    transfer->sent += size;
    transfer->lastSign = m_lastSign = X11Connection::Clock::now();
    if (size == 0) {
        // The empty piece said that all is sent.
        m_transfers.erase(transfer);
        const bool another =
            std::any_of(m_transfers.begin(), m_transfers.end(),
                        [&](const Transfer &t) { return t.requestor == requestor; });
        const uint32_t none = XCB_EVENT_MASK_NO_EVENT;
        if (!another)
            xcb_change_window_attributes(m_x11, requestor, XCB_CW_EVENT_MASK, &none);
        tell();
    }
    xcb_flush(m_x11);
    return true;
}

void X11SelectionOwner::forgetTransfersTo(xcb_window_t requestor) {
    if (m_transfers.removeIf([=](const Transfer &t) { return t.requestor == requestor; }) > 0)
        tell();
}

void X11SelectionOwner::forgetStalledTransfers() {
    const auto now = X11Connection::Clock::now();
    m_transfers.removeIf([=](const Transfer &t) { return now - t.lastSign > longestStall; });
}
