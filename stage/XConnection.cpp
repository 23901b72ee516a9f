#include "stage/XConnection.h"

#include <poll.h>

#include <algorithm>

XConnection::XConnection(const QString &display) {
    if (display.isEmpty())
        return;
    m_connection = xcb_connect(display.toLocal8Bit().constData(), nullptr);
    if (isValid())
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
}

XConnection::~XConnection() {
    if (m_connection)
        xcb_disconnect(m_connection);
}

bool XConnection::isValid() const {
    return m_connection && !xcb_connection_has_error(m_connection);
}

xcb_atom_t XConnection::atom(const QByteArray &name) {
    if (const auto known = m_atoms.constFind(name); known != m_atoms.cend())
        return *known;
    const auto cookie =
        xcb_intern_atom(m_connection, 0, static_cast<uint16_t>(name.size()), name.constData());
    const XOwned<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(m_connection, cookie, nullptr));
    return reply ? *m_atoms.insert(name, reply->atom) : xcb_atom_t(XCB_NONE);
}

QByteArray XConnection::atomName(xcb_atom_t atom) const {
    const XOwned<xcb_get_atom_name_reply_t> reply(
        xcb_get_atom_name_reply(m_connection, xcb_get_atom_name(m_connection, atom), nullptr));
    if (!reply)
        return {};
    return {xcb_get_atom_name_name(reply.get()), xcb_get_atom_name_name_length(reply.get())};
}

xcb_window_t XConnection::createWindow(uint32_t eventMask) const {
    const xcb_window_t window = xcb_generate_id(m_connection);
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, m_root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                      &eventMask);
    return window;
}

std::optional<xcb_timestamp_t> XConnection::serverTime(xcb_window_t window) {
    const xcb_atom_t property = atom("BRINDLE_TEST_TIME");
    xcb_change_property(m_connection, XCB_PROP_MODE_APPEND, window, property, XCB_ATOM_INTEGER, 32,
                        0, nullptr);
    while (const auto event = nextEvent(QDeadlineTimer(5000))) {
        const auto *change = reinterpret_cast<xcb_property_notify_event_t *>(event.get());
        if ((event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY && change->window == window &&
            change->atom == property)
            return change->time;
    }
    return std::nullopt;
}

XOwned<xcb_generic_event_t> XConnection::nextEvent(QDeadlineTimer deadline) const {
    if (m_connection)
        xcb_flush(m_connection);
    while (isValid()) {
        XOwned<xcb_generic_event_t> event(xcb_poll_for_event(m_connection));
        if (event)
            return event;
        if (deadline.hasExpired())
            break;
        pollfd waiting{xcb_get_file_descriptor(m_connection), POLLIN, 0};
        const qint64 remaining = deadline.isForever() ? -1 : deadline.remainingTime() + 1;
        poll(&waiting, 1, static_cast<int>(std::min<qint64>(remaining, 60000)));
    }
    return nullptr;
}

bool XConnection::sync() const {
    const XOwned<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    return reply != nullptr;
}
