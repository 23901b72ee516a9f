#include "platform/x11/X11FrontWindow.h"

#include "platform/linux/Terminals.h"

X11FrontWindow::X11FrontWindow(std::shared_ptr<X11Connection> x11) : m_x11(std::move(x11)) {}

void X11FrontWindow::find(std::function<void(Kind)> done) {
    done(kind());
}

FrontWindow::Kind X11FrontWindow::kind() const {
    const XcbPtr<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(*m_x11, xcb_get_input_focus(*m_x11), nullptr));
    xcb_window_t window = focus ? focus->focus : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
    // The focus is often on a child of the window that carries the class.
    while (window > XCB_INPUT_FOCUS_POINTER_ROOT && window != m_x11->root()) {
        constexpr uint32_t longestClass = 256;
        const auto classAsked = xcb_get_property(*m_x11, 0, window, XCB_ATOM_WM_CLASS,
                                                 XCB_ATOM_STRING, 0, longestClass);
        const auto treeAsked = xcb_query_tree(*m_x11, window);
        const XcbPtr<xcb_get_property_reply_t> wmClass(
            xcb_get_property_reply(*m_x11, classAsked, nullptr));
        const XcbPtr<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(*m_x11, treeAsked, nullptr));
        if (wmClass && wmClass->value_len > 0) {
            // Two names, each ended by NUL.
            const QByteArray names(static_cast<const char *>(xcb_get_property_value(wmClass.get())),
                                   xcb_get_property_value_length(wmClass.get()));
            for (const QByteArray &name : names.split('\0')) {
                if (Terminals::isTerminal(name))
                    return Kind::Terminal;
            }
            return Kind::Application;
        }
        window = tree ? tree->parent : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
    }
    return Kind::Unknown;
}
