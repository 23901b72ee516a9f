#include "e2e/Windows.h"

#include "stage/XConnection.h"

QStringList windowTitles(const QString &display) {
    XConnection x(display);
    const auto property = [&](xcb_window_t window, const QByteArray &name) {
        const auto cookie =
            xcb_get_property(x.get(), 0, window, x.atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, 1024);
        const XOwned<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(x.get(), cookie, nullptr));
        return reply ? QByteArray(static_cast<const char *>(xcb_get_property_value(reply.get())),
                                  xcb_get_property_value_length(reply.get()))
                     : QByteArray();
    };
    QStringList titles;
    const QByteArray list = property(x.root(), "_NET_CLIENT_LIST");
    const auto *windows = reinterpret_cast<const xcb_window_t *>(list.constData());
    for (qsizetype i = 0; i < list.size() / qsizetype{sizeof(xcb_window_t)}; ++i)
        titles.append(QString::fromUtf8(property(windows[i], "_NET_WM_NAME")));
    return titles;
}
