#include "platform/x11/X11SelectionReader.h"

#include <algorithm>
#include <limits>

namespace {
/// Properties are used in turn, so that the late answer to a read that was given up does not pass
/// for the answer to the next one.
constexpr int propertyCount = 8;
} // namespace

X11SelectionReader::X11SelectionReader(X11Connection &x11, xcb_atom_t selection)
    : m_x11(x11), m_selection(selection), m_incr(x11.atom("INCR")) {
    m_x11.addHandler([this](const xcb_generic_event_t &event) { return handle(event); });
}

QList<std::optional<X11SelectionReader::Data>>
X11SelectionReader::convert(const QList<xcb_atom_t> &targets) {
    m_conversions.clear();
    for (const xcb_atom_t target : targets) {
        const xcb_atom_t property = nextProperty();
        m_conversions.append({target, property, Stage::Asked, {}});
        xcb_convert_selection(m_x11, m_x11.window(), m_selection, target, property,
                              XCB_CURRENT_TIME);
    }
    const auto start = X11Connection::Clock::now();
    m_lastSign = start;
    const bool finished = m_x11.waitUntil(
        [this] { return isFinished(); },
        [this, start] { return std::min(start + longestRead, m_lastSign + longestSilence); });
    m_ownerIsSilent = !finished;

    QList<std::optional<Data>> answers;
    for (Conversion &conversion : m_conversions) {
        if (conversion.stage == Stage::Done)
            answers.append(std::move(conversion.data));
        else
            answers.append(std::nullopt);
    }
    m_conversions.clear();
    return answers;
}

void X11SelectionReader::ownerChanged() {
    for (Conversion &conversion : m_conversions) {
        if (conversion.stage != Stage::Done)
            conversion.stage = Stage::Refused;
    }
}

bool X11SelectionReader::handle(const xcb_generic_event_t &event) {
    switch (event.response_type & 0x7f) {
    case XCB_SELECTION_NOTIFY:
        return selectionNotify(reinterpret_cast<const xcb_selection_notify_event_t &>(event));
    case XCB_PROPERTY_NOTIFY:
        return propertyNotify(reinterpret_cast<const xcb_property_notify_event_t &>(event));
    default:
        return false;
    }
}

bool X11SelectionReader::selectionNotify(const xcb_selection_notify_event_t &event) {
    if (event.requestor != m_x11.window() || event.selection != m_selection)
        return false;
    const auto asked =
        std::find_if(m_conversions.begin(), m_conversions.end(), [&](const Conversion &candidate) {
            return candidate.stage == Stage::Asked && candidate.target == event.target &&
                   (event.property == XCB_ATOM_NONE || event.property == candidate.property);
        });
    if (asked == m_conversions.end()) {
        // The late answer to a read that was given up.
        if (event.property != XCB_ATOM_NONE)
            xcb_delete_property(m_x11, m_x11.window(), event.property);
        return true;
    }
    m_lastSign = X11Connection::Clock::now();
    if (event.property == XCB_ATOM_NONE) {
        asked->stage = Stage::Refused;
        return true;
    }
    asked->data = takeProperty(asked->property);
    asked->stage = Stage::Done;
    if (asked->data.type == m_incr) {
        asked->data = {};
        asked->stage = Stage::InPieces;
    }
    return true;
}

bool X11SelectionReader::propertyNotify(const xcb_property_notify_event_t &event) {
    if (event.window != m_x11.window() || event.state != XCB_PROPERTY_NEW_VALUE)
        return false;
    for (Conversion &conversion : m_conversions) {
        if (conversion.stage == Stage::InPieces && conversion.property == event.atom) {
            takePiece(conversion);
            return true;
        }
    }
    return false;
}

void X11SelectionReader::takePiece(Conversion &conversion) {
    const Data piece = takeProperty(conversion.property);
    m_lastSign = X11Connection::Clock::now();
    if (piece.bytes.isEmpty()) {
        conversion.stage = Stage::Done;
        return;
    }
    if (conversion.data.bytes.size() + piece.bytes.size() > largestData) {
        conversion.data = {};
        conversion.stage = Stage::Refused;
        return;
    }
    conversion.data.type = piece.type;
    conversion.data.bytes += piece.bytes;
}

X11SelectionReader::Data X11SelectionReader::takeProperty(xcb_atom_t property) {
    constexpr uint32_t whole = std::numeric_limits<int32_t>::max() / 4;
    const auto cookie =
        xcb_get_property(m_x11, 1, m_x11.window(), property, XCB_GET_PROPERTY_TYPE_ANY, 0, whole);
    const XcbPtr<xcb_get_property_reply_t> reply(xcb_get_property_reply(m_x11, cookie, nullptr));
    if (!reply)
        return {};
    return {reply->type, QByteArray(static_cast<const char *>(xcb_get_property_value(reply.get())),
                                    xcb_get_property_value_length(reply.get()))};
}

bool X11SelectionReader::isFinished() const {
    return std::all_of(m_conversions.begin(), m_conversions.end(), [](const Conversion &one) {
        return one.stage == Stage::Done || one.stage == Stage::Refused;
    });
}

xcb_atom_t X11SelectionReader::nextProperty() {
    m_propertyNumber = (m_propertyNumber + 1) % propertyCount;
    return m_x11.atom("BRINDLE_SELECTION_" + QByteArray::number(m_propertyNumber));
}
