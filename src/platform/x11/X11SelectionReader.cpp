#include "platform/x11/X11SelectionReader.h"

#include "platform/linux/FlavourNames.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace {

/// The most flavours that are read. Who offers more text-like ones than this is not to be taken
/// seriously.
constexpr int mostFlavours = 24;

/// The properties that answers arrive in. They are used in turn, so that the late answer to a read
/// that was given up does not pass for the answer to the next one.
constexpr int propertyCount = 2 * mostFlavours;

} // namespace

X11SelectionReader::X11SelectionReader(X11Connection &x11, xcb_atom_t selection)
    : m_x11(x11), m_selection(selection), m_targets(x11.atom("TARGETS")), m_incr(x11.atom("INCR")) {
    QList<QByteArray> names;
    for (int number = 0; number < propertyCount; ++number)
        names.append("BRINDLE_SELECTION_" + QByteArray::number(number));
    m_properties = m_x11.atoms(names);
    m_x11.addHandler([this](const xcb_generic_event_t &event) { return handle(event); });
}

X11SelectionReader::Reading
X11SelectionReader::read(const std::function<bool(const QByteArray &name)> &isWanted) {
    m_conversions.clear();
    m_offered.reset();
    // Nearly every owner has the two; asked together with what there is they cost no round trip.
    for (const char *name : {"TARGETS", "UTF8_STRING", "text/html"})
        ask(m_x11.atom(name));
    const auto start = X11Connection::Clock::now();
    m_lastSign = start;
    m_x11.waitUntil(
        [&] {
            follow(isWanted);
            return isFinished();
        },
        [this, start] { return std::min(start + longestRead, m_lastSign + longestSilence); });

    Reading reading{std::exchange(m_offered, std::nullopt), {}};
    for (const QByteArray &name : reading.offered.value_or(QList<QByteArray>())) {
        const xcb_atom_t target = m_x11.atom(name);
        for (Conversion &conversion : m_conversions) {
            if (conversion.target == target && conversion.stage == Stage::Done && isWanted(name))
                reading.given.append({name, m_x11.atomNames({conversion.data.type}).constFirst(),
                                      std::move(conversion.data.bytes)});
        }
    }
    m_conversions.clear();
    return reading;
}

void X11SelectionReader::ask(xcb_atom_t target) {
    const xcb_atom_t property = nextProperty();
    m_conversions.append({target, property, Stage::Asked, {}});
    xcb_convert_selection(m_x11, m_x11.window(), m_selection, target, property, XCB_CURRENT_TIME);
}

/// Once it is known what there is: asks for what is wanted of it, and no longer waits for what was
/// asked in vain. Some owners never refuse.
void X11SelectionReader::follow(const std::function<bool(const QByteArray &)> &isWanted) {
    if (m_offered || m_conversions.constFirst().stage != Stage::Done)
        return;
    const QByteArray list = std::exchange(m_conversions.first().data.bytes, {});
    const auto *atoms = reinterpret_cast<const xcb_atom_t *>(list.constData());
    const auto count = list.size() / static_cast<qsizetype>(sizeof(xcb_atom_t));
    m_offered.emplace();
    for (const QByteArray &name : m_x11.atomNames(QList<xcb_atom_t>(atoms, atoms + count))) {
        if (FlavourNames::holdsData(name) && !m_offered->contains(name))
            m_offered->append(name);
    }
    QList<xcb_atom_t> wanted;
    for (const QByteArray &name : std::as_const(*m_offered)) {
        if (isWanted(name) && wanted.size() < mostFlavours)
            wanted.append(m_x11.atom(name));
    }
    m_conversions.removeIf([&](const Conversion &conversion) {
        return conversion.target != m_targets && !wanted.contains(conversion.target);
    });
    for (const xcb_atom_t target : std::as_const(wanted)) {
        if (std::none_of(m_conversions.begin(), m_conversions.end(),
                         [=](const Conversion &asked) { return asked.target == target; }))
            ask(target);
    }
    xcb_flush(m_x11);
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
    } else if (conversion.data.bytes.size() + piece.bytes.size() > largestData) {
        conversion.data = {};
        conversion.stage = Stage::Refused;
    } else {
        conversion.data.type = piece.type;
        conversion.data.bytes += piece.bytes;
    }
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
    m_propertyNumber = (m_propertyNumber + 1) % m_properties.size();
    return m_properties[m_propertyNumber];
}
