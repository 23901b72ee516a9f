// What pasting by a hotkey costs at least, on nothing but the X protocol: grabs Brindle's hotkey,
// and at a press owns the clipboard, pauses as long as Brindle does while it serves what it owns,
// and fakes Ctrl+V. The arguments are the data and the names of the flavours that give it.

#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <linux/input-event-codes.h>
#include <poll.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

struct Free {
    void operator()(void *memory) const { std::free(memory); }
};
template <class T>
using Owned = std::unique_ptr<T, Free>;

constexpr std::chrono::milliseconds pause{50};

constexpr xcb_keycode_t keyCode(int evdevCode) {
    return static_cast<xcb_keycode_t>(evdevCode + 8);
}

class BarePaste {
public:
    BarePaste(std::string data, const std::vector<std::string> &flavours)
        : m_data(std::move(data)), m_clipboard(atom("CLIPBOARD")), m_targets(atom("TARGETS")) {
        m_offered.push_back(m_targets);
        for (const std::string &flavour : flavours)
            m_offered.push_back(atom(flavour));
        m_window = xcb_generate_id(m_x.get());
        xcb_create_window(m_x.get(), XCB_COPY_FROM_PARENT, m_window, root(), 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    }

    bool grab() {
        constexpr uint16_t modifiers = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4;
        const auto asked = xcb_grab_key_checked(m_x.get(), 0, root(), modifiers, keyCode(KEY_V),
                                                XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        return !Owned<xcb_generic_error_t>(xcb_request_check(m_x.get(), asked));
    }

    void run() {
        for (;;) {
            while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(m_x.get())})
                take(*event);
            if (xcb_connection_has_error(m_x.get()))
                return;
            if (m_isPaused && Clock::now() >= m_end) {
                m_isPaused = false;
                post();
                continue;
            }
            pollfd wanted{xcb_get_file_descriptor(m_x.get()), POLLIN, 0};
            const auto left =
                std::chrono::duration_cast<std::chrono::nanoseconds>(m_end - Clock::now());
            const timespec timeout{0, std::max(left.count(), std::chrono::nanoseconds::rep{0})};
            ppoll(&wanted, 1, m_isPaused ? &timeout : nullptr, nullptr);
        }
    }

private:
    xcb_window_t root() { return xcb_setup_roots_iterator(xcb_get_setup(m_x.get())).data->root; }

    xcb_atom_t atom(const std::string &name) {
        const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
            m_x.get(),
            xcb_intern_atom(m_x.get(), 0, static_cast<uint16_t>(name.size()), name.data()),
            nullptr));
        return reply ? reply->atom : XCB_NONE;
    }

    void take(const xcb_generic_event_t &event) {
        const int type = event.response_type & 0x7f;
        if (type == XCB_KEY_PRESS && !m_isPaused) {
            const auto &press = reinterpret_cast<const xcb_key_press_event_t &>(event);
            xcb_set_selection_owner(m_x.get(), m_window, m_clipboard, press.time);
            xcb_flush(m_x.get());
            m_isPaused = true;
            m_end = Clock::now() + pause;
        } else if (type == XCB_SELECTION_REQUEST) {
            answer(reinterpret_cast<const xcb_selection_request_event_t &>(event));
        }
    }

    void answer(const xcb_selection_request_event_t &request) {
        xcb_selection_notify_event_t told{XCB_SELECTION_NOTIFY,
                                          0,
                                          0,
                                          request.time,
                                          request.requestor,
                                          request.selection,
                                          request.target,
                                          request.property};
        if (request.target == m_targets)
            xcb_change_property(m_x.get(), XCB_PROP_MODE_REPLACE, request.requestor,
                                request.property, XCB_ATOM_ATOM, 32,
                                static_cast<uint32_t>(m_offered.size()), m_offered.data());
        else
            xcb_change_property(m_x.get(), XCB_PROP_MODE_REPLACE, request.requestor,
                                request.property, request.target, 8,
                                static_cast<uint32_t>(m_data.size()), m_data.data());
        xcb_send_event(m_x.get(), 0, request.requestor, 0, reinterpret_cast<const char *>(&told));
        xcb_flush(m_x.get());
    }

    void post() {
        for (const int key : {KEY_LEFTCTRL, KEY_V})
            fake(XCB_KEY_PRESS, key);
        for (const int key : {KEY_V, KEY_LEFTCTRL})
            fake(XCB_KEY_RELEASE, key);
        xcb_flush(m_x.get());
    }

    void fake(uint8_t type, int key) {
        xcb_test_fake_input(m_x.get(), type, keyCode(key), XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0,
                            0);
    }

    struct Disconnect {
        void operator()(xcb_connection_t *x) const { xcb_disconnect(x); }
    };

    std::unique_ptr<xcb_connection_t, Disconnect> m_x{xcb_connect(nullptr, nullptr)};
    std::string m_data;
    xcb_atom_t m_clipboard, m_targets;
    std::vector<xcb_atom_t> m_offered;
    xcb_window_t m_window = XCB_NONE;
    bool m_isPaused = false;
    Clock::time_point m_end;
};

} // namespace

int main(int argc, char **argv) {
    if (argc < 3)
        return 2;
    BarePaste paste(argv[1], std::vector<std::string>(argv + 2, argv + argc));
    if (!paste.grab())
        return 1;
    paste.run();
    return 0;
}
