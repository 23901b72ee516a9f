#include "platform/x11/X11Connection.h"

#include <poll.h>

namespace {
/// Bit that marks an event as sent by another client rather than by the server.
constexpr uint8_t sentEventFlag = 0x80;
} // namespace

X11Connection::X11Connection(int interrupt) : m_interrupt(interrupt) {
    xcb_connection_t *connection = xcb_connect(nullptr, &m_screenNumber);
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        return;
    }
    m_connection = connection;
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(m_connection));
    for (int i = 0; i < m_screenNumber; ++i)
        xcb_screen_next(&screens);
    m_root = screens.data->root;

    m_window = xcb_generate_id(m_connection);
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, m_root, -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                      &events);
    m_timestampAtom = atom("BRINDLE_TIMESTAMP");

    const auto version =
        xcb_xfixes_query_version(m_connection, XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION);
    XcbPtr<xcb_xfixes_query_version_reply_t>(
        xcb_xfixes_query_version_reply(m_connection, version, nullptr));
    m_xfixesFirstEvent = xcb_get_extension_data(m_connection, &xcb_xfixes_id)->first_event;
}

X11Connection::~X11Connection() {
    if (m_connection)
        xcb_disconnect(m_connection);
}

void X11Connection::remember(xcb_atom_t atom, const QByteArray &name) {
    m_atoms.insert(name, atom);
    m_atomNames.insert(atom, name);
}

xcb_atom_t X11Connection::atom(const QByteArray &name) {
    const auto known = m_atoms.constFind(name);
    return known != m_atoms.constEnd() ? *known : atoms({name}).constFirst();
}

QList<xcb_atom_t> X11Connection::atoms(const QList<QByteArray> &names) {
    QList<std::pair<QByteArray, xcb_intern_atom_cookie_t>> asked;
    for (const QByteArray &name : names) {
        if (!m_atoms.contains(name))
            asked.append({name, xcb_intern_atom(m_connection, 0, static_cast<uint16_t>(name.size()),
                                                name.constData())});
    }
    for (const auto &[name, cookie] : asked) {
        const XcbPtr<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(m_connection, cookie, nullptr));
        remember(reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE), name);
    }
    QList<xcb_atom_t> atoms;
    for (const QByteArray &name : names)
        atoms.append(m_atoms.value(name));
    return atoms;
}

QList<QByteArray> X11Connection::atomNames(const QList<xcb_atom_t> &atoms) {
    QList<std::pair<xcb_atom_t, xcb_get_atom_name_cookie_t>> asked;
    for (const xcb_atom_t atom : atoms) {
        if (!m_atomNames.contains(atom))
            asked.append({atom, xcb_get_atom_name(m_connection, atom)});
    }
    for (const auto &[atom, cookie] : asked) {
        const XcbPtr<xcb_get_atom_name_reply_t> reply(
            xcb_get_atom_name_reply(m_connection, cookie, nullptr));
        if (reply)
            remember(atom, QByteArray(xcb_get_atom_name_name(reply.get()),
                                      xcb_get_atom_name_name_length(reply.get())));
    }
    QList<QByteArray> names;
    for (const xcb_atom_t atom : atoms)
        names.append(m_atomNames.value(atom));
    return names;
}

void X11Connection::addHandler(EventHandler handler) {
    m_handlers.append(std::move(handler));
}

void X11Connection::watchSelection(xcb_atom_t selection, SelectionHandler handler) {
    xcb_xfixes_select_selection_input(m_connection, m_window, selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    xcb_flush(m_connection);
    m_selectionHandlers.append({selection, std::move(handler)});
}

void X11Connection::processEvents() {
    while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)})
        dispatch(*event);
    xcb_flush(m_connection);
}

void X11Connection::dispatch(const xcb_generic_event_t &event) {
    const uint8_t type = event.response_type & ~sentEventFlag;
    if (type == m_xfixesFirstEvent + XCB_XFIXES_SELECTION_NOTIFY) {
        const auto &notify = reinterpret_cast<const xcb_xfixes_selection_notify_event_t &>(event);
        for (const auto &[selection, handler] : m_selectionHandlers) {
            if (selection == notify.selection)
                handler(notify);
        }
        return;
    }
    if (type == XCB_PROPERTY_NOTIFY) {
        const auto &notify = reinterpret_cast<const xcb_property_notify_event_t &>(event);
        if (notify.window == m_window && notify.atom == m_timestampAtom) {
            m_lastTimestamp = notify.time;
            return;
        }
    }
    for (const EventHandler &handler : m_handlers) {
        if (handler(event))
            return;
    }
}

void X11Connection::sync() {
    const auto cookie = xcb_get_input_focus(m_connection);
    XcbPtr<xcb_get_input_focus_reply_t>(xcb_get_input_focus_reply(m_connection, cookie, nullptr));
    processEvents();
}

bool X11Connection::waitUntil(const std::function<bool()> &done,
                              const std::function<Clock::time_point()> &deadline) {
    for (;;) {
        processEvents();
        if (done())
            return true;
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline() - Clock::now()).count();
        if (left <= 0 || isBroken())
            return false;
        pollfd sources[] = {{descriptor(), POLLIN, 0}, {m_interrupt, POLLIN, 0}};
        if (poll(sources, std::size(sources), static_cast<int>(left)) > 0 && sources[1].revents)
            return false;
    }
}

xcb_timestamp_t X11Connection::freshTimestamp() {
    m_lastTimestamp = XCB_CURRENT_TIME;
    // Appending nothing changes nothing, but is announced with the server's time.
    xcb_change_property(m_connection, XCB_PROP_MODE_APPEND, m_window, m_timestampAtom,
                        XCB_ATOM_INTEGER, 32, 0, nullptr);
    const auto deadline = Clock::now() + std::chrono::seconds(1);
    waitUntil([this] { return m_lastTimestamp != XCB_CURRENT_TIME; }, [=] { return deadline; });
    return m_lastTimestamp;
}
