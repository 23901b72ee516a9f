#include "stage/Windows.h"

#include "stage/XConnection.h"

namespace {

QByteArray property(XConnection &x, xcb_window_t window, const QByteArray &name) {
    const auto cookie =
        xcb_get_property(x.get(), 0, window, x.atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, 1024);
    const XOwned<xcb_get_property_reply_t> reply(xcb_get_property_reply(x.get(), cookie, nullptr));
    return reply ? QByteArray(static_cast<const char *>(xcb_get_property_value(reply.get())),
                              xcb_get_property_value_length(reply.get()))
                 : QByteArray();
}

struct Window {
    xcb_window_t id;
    QString title;
};

/// The windows that a property of the root window lists.
QList<Window> windows(XConnection &x, const QByteArray &list = "_NET_CLIENT_LIST") {
    const QByteArray listed = property(x, x.root(), list);
    const auto *ids = reinterpret_cast<const xcb_window_t *>(listed.constData());
    QList<Window> found;
    for (qsizetype i = 0; i < listed.size() / qsizetype{sizeof(xcb_window_t)}; ++i)
        found.append({ids[i], QString::fromUtf8(property(x, ids[i], "_NET_WM_NAME"))});
    return found;
}

QRect geometry(const XConnection &x, xcb_window_t window) {
    const XOwned<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(x.get(), xcb_get_geometry(x.get(), window), nullptr));
    const XOwned<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(
        x.get(), xcb_translate_coordinates(x.get(), window, x.root(), 0, 0), nullptr));
    return size && place ? QRect(place->dst_x, place->dst_y, size->width, size->height) : QRect();
}

} // namespace

QStringList windowTitles(const QString &display) {
    XConnection x(display);
    QStringList titles;
    for (const Window &window : windows(x))
        titles.append(window.title);
    return titles;
}

bool isActive(const QString &display, const QString &title) {
    XConnection x(display);
    const QList<Window> active = windows(x, "_NET_ACTIVE_WINDOW");
    return !active.isEmpty() && active.first().title == title;
}

bool closeWindow(const QString &display, const QString &title) {
    XConnection x(display);
    for (const Window &window : windows(x)) {
        if (window.title != title)
            continue;
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window.id;
        message.type = x.atom("_NET_CLOSE_WINDOW");
        xcb_send_event(x.get(), 0, x.root(),
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char *>(&message));
        return x.sync();
    }
    return false;
}

QRect windowPlace(const QString &display, const QString &title) {
    XConnection x(display);
    for (const Window &window : windows(x)) {
        if (window.title == title)
            return geometry(x, window.id).intersected(geometry(x, x.root()));
    }
    return {};
}

QImage screenPicture(const QString &display) {
    const XConnection x(display);
    const QRect screen = geometry(x, x.root());
    const auto cookie = xcb_get_image(x.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, x.root(), 0, 0,
                                      static_cast<uint16_t>(screen.width()),
                                      static_cast<uint16_t>(screen.height()), ~uint32_t{0});
    const XOwned<xcb_get_image_reply_t> image(xcb_get_image_reply(x.get(), cookie, nullptr));
    constexpr int bytesPerPixel = 4; // as servers pack pixels of 24 bits
    if (!image ||
        xcb_get_image_data_length(image.get()) != screen.width() * screen.height() * bytesPerPixel)
        return {};
    const QImage shared(xcb_get_image_data(image.get()), screen.width(), screen.height(),
                        QImage::Format_RGB32);
    return shared.copy();
}
