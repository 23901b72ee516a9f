#include "e2e/ClipboardManager.h"

#include "stage/ClipboardReader.h"
#include "stage/XConnection.h"

#include <QDeadlineTimer>

ClipboardManager::ClipboardManager(const QString &display)
    : m_thread([this, display] { run(display); }) {}

ClipboardManager::~ClipboardManager() {
    m_stop = true;
    m_thread.join();
}

void ClipboardManager::run(const QString &display) {
    XConnection x(display);
    if (!x.isValid())
        return;
    const xcb_window_t window = x.createWindow(XCB_EVENT_MASK_PROPERTY_CHANGE);
    const xcb_atom_t clipboard = x.atom("CLIPBOARD");
    const auto own = [&](const char *name) {
        xcb_set_selection_owner(x.get(), window, x.atom(name),
                                x.serverTime(window).value_or(XCB_CURRENT_TIME));
        x.sync();
    };
    own("CLIPBOARD_MANAGER");
    m_isThere = true;
    QByteArray text;
    while (!m_stop && x.isValid()) {
        const auto event = x.nextEvent(QDeadlineTimer(50));
        if (!event || (event->response_type & 0x7f) != XCB_SELECTION_REQUEST)
            continue;
        const auto &request = reinterpret_cast<const xcb_selection_request_event_t &>(*event);
        xcb_selection_notify_event_t notify{};
        notify.response_type = XCB_SELECTION_NOTIFY;
        notify.requestor = request.requestor;
        notify.selection = request.selection;
        notify.target = request.target;
        if (request.selection == clipboard && request.target == x.atom("UTF8_STRING")) {
            xcb_change_property(x.get(), XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                                request.target, 8, static_cast<uint32_t>(text.size()),
                                text.constData());
            notify.property = request.property;
        } else if (request.target == x.atom("SAVE_TARGETS")) {
            text = ClipboardReader(display).data("UTF8_STRING").value_or(QByteArray());
            own("CLIPBOARD");
            m_hasSaved = true;
            notify.property = request.property;
        }
        xcb_send_event(x.get(), 0, request.requestor, 0, reinterpret_cast<const char *>(&notify));
        x.sync();
    }
}
