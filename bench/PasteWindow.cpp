#include "bench/PasteWindow.h"

#include "bench/Hotkey.h"
#include "bench/Measure.h"

#include <algorithm>

namespace {

constexpr int bound = 15000; // milliseconds

constexpr char data[] = "BRINDLE_BENCH_DATA";

} // namespace

PasteWindow::PasteWindow(const QString &display) : m_x(display) {
    require(m_x.isValid(), "no display " + display);
    // So that none of them costs a round trip within a measurement.
    for (const char *name : {"CLIPBOARD", "TARGETS", "UTF8_STRING", "text/html", data})
        m_x.atom(name);
    m_window = xcb_generate_id(m_x.get());
    // Past the window manager, so that the focus can be taken as soon as it is shown.
    const uint32_t attributes[] = {1, XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_FOCUS_CHANGE};
    xcb_create_window(m_x.get(), XCB_COPY_FROM_PARENT, m_window, m_x.root(), 0, 0, 200, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, attributes);
    constexpr char windowClass[] = "target\0Target";
    xcb_change_property(m_x.get(), XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_CLASS,
                        XCB_ATOM_STRING, 8, sizeof windowClass, windowClass);
    xcb_map_window(m_x.get(), m_window);
    xcb_set_input_focus(m_x.get(), XCB_INPUT_FOCUS_PARENT, m_window, XCB_CURRENT_TIME);
    const QDeadlineTimer deadline(bound);
    bool focused = false;
    while (!focused) {
        const auto event = m_x.nextEvent(deadline);
        require(event != nullptr, "the window to paste into gets no focus");
        focused = (event->response_type & 0x7f) == XCB_FOCUS_IN;
    }
}

std::optional<Landed> PasteWindow::waitForPaste() {
    const QDeadlineTimer deadline(bound);
    while (const auto event = m_x.nextEvent(deadline)) {
        const int type = event->response_type & 0x7f;
        if (type == XCB_KEY_PRESS) {
            const auto *press = reinterpret_cast<const xcb_key_press_event_t *>(event.get());
            if (press->detail == Hotkey::key && (press->state & 0xff) == XCB_MOD_MASK_CONTROL)
                convert("TARGETS", press->time);
        } else if (type == XCB_SELECTION_NOTIFY) {
            const auto *answer =
                reinterpret_cast<const xcb_selection_notify_event_t *>(event.get());
            if (answer->property == XCB_NONE)
                return std::nullopt;
            const QByteArray bytes = take();
            if (answer->target != m_x.atom("TARGETS"))
                return Landed{m_x.atomName(answer->target), bytes, now()};
            const auto *atoms = reinterpret_cast<const xcb_atom_t *>(bytes.constData());
            const auto *end = atoms + bytes.size() / qsizetype(sizeof(xcb_atom_t));
            const bool hasHtml = std::find(atoms, end, m_x.atom("text/html")) != end;
            convert(hasHtml ? "text/html" : "UTF8_STRING", answer->time);
        }
    }
    return std::nullopt;
}

void PasteWindow::convert(const QByteArray &target, xcb_timestamp_t time) {
    xcb_convert_selection(m_x.get(), m_window, m_x.atom("CLIPBOARD"), m_x.atom(target),
                          m_x.atom(data), time);
}

QByteArray PasteWindow::take() {
    const XOwned<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(m_x.get(),
                               xcb_get_property(m_x.get(), 1, m_window, m_x.atom(data),
                                                XCB_GET_PROPERTY_TYPE_ANY, 0, 0xffff),
                               nullptr));
    if (!reply)
        return {};
    return {static_cast<const char *>(xcb_get_property_value(reply.get())),
            xcb_get_property_value_length(reply.get())};
}
