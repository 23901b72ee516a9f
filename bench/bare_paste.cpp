// What pasting by a hotkey costs at least: grabs Brindle's hotkey, and at a press owns the
// clipboard with the same flavours, pauses as long, and fakes Ctrl+V. The argument is the flavour
// that the target will take: UTF8_STRING or text/html.

#include "bench/Hotkey.h"

#include <QAbstractNativeEventFilter>
#include <QApplication>
#include <QClipboard>
#include <QMimeData>
#include <QThreadPool>

#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <chrono>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

const auto id = u"507f1f77bcf86cd799439011"_s;
const auto link = u"https://app.example.com/records/507f1f77bcf86cd799439011"_s;
constexpr char rtf[] =
    R"({\rtf1\ansi\ansicpg1252\uc1{\fonttbl{\f0\fnil Helvetica;}}\f0\fs24 {\field{\*\fldinst{HYPERLINK "https://app.example.com/records/507f1f77bcf86cd799439011"}}{\fldrslt 507f1f77bcf86cd799439011}}})";

class BarePaste : public QObject, public QAbstractNativeEventFilter {
public:
    BarePaste(xcb_connection_t *connection, bool rich) : m_connection(connection), m_rich(rich) {}

    bool grab() const {
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
        const auto asked =
            xcb_grab_key_checked(m_connection, 0, root, Hotkey::modifiers, Hotkey::key,
                                 XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        const XOwned<xcb_generic_error_t> error(xcb_request_check(m_connection, asked));
        return !error;
    }

    bool nativeEventFilter(const QByteArray &, void *message, qintptr *) override {
        // The toolkit has to see the event too, for the time at which the clipboard is claimed.
        const auto *event = static_cast<const xcb_generic_event_t *>(message);
        if ((event->response_type & 0x7f) == XCB_KEY_PRESS)
            QMetaObject::invokeMethod(this, &BarePaste::paste, Qt::QueuedConnection);
        return false;
    }

private:
    void paste() {
        auto *data = new QMimeData;
        if (m_rich) {
            data->setHtml(u"<a href=\"%1\">%2</a>"_s.arg(link, id));
            for (const QString &name : {u"text/rtf"_s, u"application/rtf"_s, u"text/richtext"_s})
                data->setData(name, rtf);
        }
        data->setText(m_rich ? u"%1 (%2)"_s.arg(id, link) : link);
        QGuiApplication::clipboard()->setMimeData(data);
        // Asleep on a thread as Brindle is: a timer of the event loop would be late by up to 1 ms.
        QThreadPool::globalInstance()->start(
            [this, until = std::chrono::steady_clock::now() + std::chrono::milliseconds(50)] {
                std::this_thread::sleep_until(until);
                post();
            });
    }

    void post() const {
        constexpr xcb_keycode_t control = keyCode(KEY_LEFTCTRL);
        fake(XCB_KEY_PRESS, control);
        fake(XCB_KEY_PRESS, Hotkey::key);
        fake(XCB_KEY_RELEASE, Hotkey::key);
        fake(XCB_KEY_RELEASE, control);
        xcb_flush(m_connection);
    }

    void fake(uint8_t type, xcb_keycode_t key) const {
        xcb_test_fake_input(m_connection, type, key, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
    }

    xcb_connection_t *m_connection;
    bool m_rich;
};

} // namespace

int main(int argc, char **argv) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    auto *x11 = application.nativeInterface<QNativeInterface::QX11Application>();
    BarePaste paste(x11->connection(), application.arguments().contains(u"text/html"_s));
    if (!paste.grab())
        return 1;
    application.installNativeEventFilter(&paste);
    return QApplication::exec();
}
