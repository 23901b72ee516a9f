#include "e2e/Scene.h"
#include "stage/StatusArea.h"
#include "stage/XConnection.h"

#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QSettings>

#include <atomic>
#include <future>

namespace {

/// Is the clipboard manager of a display until a program that ends hands its clipboard over; what
/// that was. Blocks its thread.
QByteArray handedOver(const QString &display, std::atomic<bool> &isThere) {
    XConnection x(display);
    const xcb_window_t window = x.createWindow(XCB_EVENT_MASK_PROPERTY_CHANGE);
    xcb_set_selection_owner(x.get(), window, x.atom("CLIPBOARD_MANAGER"),
                            x.serverTime(window).value_or(XCB_CURRENT_TIME));
    x.sync();
    isThere = true;
    for (const QDeadlineTimer deadline(60000); !deadline.hasExpired() && x.isValid();) {
        const auto event = x.nextEvent(deadline);
        if (!event || (event->response_type & 0x7f) != XCB_SELECTION_REQUEST)
            continue;
        const auto &request = reinterpret_cast<const xcb_selection_request_event_t &>(*event);
        if (request.target != x.atom("SAVE_TARGETS"))
            continue;
        const auto text = ClipboardReader(display).data("UTF8_STRING");
        xcb_selection_notify_event_t notify{};
        notify.response_type = XCB_SELECTION_NOTIFY;
        notify.requestor = request.requestor;
        notify.selection = request.selection;
        notify.target = request.target;
        notify.property = request.property;
        xcb_send_event(x.get(), 0, request.requestor, 0, reinterpret_cast<const char *>(&notify));
        x.sync();
        return text.value_or("(unreadable)");
    }
    return "(never asked)";
}

/// Takes every call and answers none.
struct SilentObject : QDBusVirtualObject {
    bool handleMessage(const QDBusMessage &, const QDBusConnection &) override {
        return wasAsked = true;
    }
    QString introspect(const QString &) const override { return {}; }

    bool wasAsked = false;
};

/// Whether a window that can be embedded is inside another one. Every window of the toolkit can be,
/// so this is for displays without a window manager and its frames.
bool hasEmbeddedIcon(XConnection &x, xcb_window_t window) {
    const XOwned<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(x.get(), xcb_query_tree(x.get(), window), nullptr));
    for (int i = 0; tree && i < xcb_query_tree_children_length(tree.get()); ++i) {
        const xcb_window_t child = xcb_query_tree_children(tree.get())[i];
        const auto asked = xcb_get_property(x.get(), 0, child, x.atom("_XEMBED_INFO"),
                                            XCB_GET_PROPERTY_TYPE_ANY, 0, 2);
        const XOwned<xcb_get_property_reply_t> info(
            xcb_get_property_reply(x.get(), asked, nullptr));
        const bool isIcon = info && xcb_get_property_value_length(info.get()) > 0;
        if ((isIcon && window != x.root()) || hasEmbeddedIcon(x, child))
            return true;
    }
    return false;
}

} // namespace

class TestE2eDesktop : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void trayShowsTheMenuAndItWorks() {
        Scene scene({.notifications = true, .keyring = true});
        const StatusArea area(scene.desktop.bus());
        QVERIFY(area.isThere());
        scene.start({{"hotkeyKeyCode", "38"}, {"hotkeyModifiers", "2304"}});
        QVERIFY(waitFor([&] { return area.items().size() == 1; }));
        QVERIFY(scene.isUp());
        QCOMPARE(area.menu(), (QStringList{"Enrich & Paste (Alt+Super+J)", "Enrich Clipboard Only",
                                           "-", "Preferences…", "View Logs…", "-", "About Brindle",
                                           "Check for Updates…", "Quit"}));
        const ClipboardOwner owner(scene.desktop, scene.copied(record));
        // The other button opens the same menu on the screen; this is its second entry.
        const QImage before = screenPicture(scene.desktop.display());
        QVERIFY(area.click());
        QVERIFY(waitFor([&] { return screenPicture(scene.desktop.display()) != before; }));
        for (const int key : {KEY_DOWN, KEY_DOWN, KEY_ENTER})
            scene.keys.tap(keyCode(key));
        QVERIFY(scene.shown.waitForAccepted(1));
        QCOMPARE(scene.shown.notifications()[0].body, "Clipboard: " + recordLink);

        QVERIFY(windowTitles(scene.desktop.display()).isEmpty());
        QVERIFY(area.choose("View Logs…"));
        QVERIFY(scene.shows("Brindle Logs"));
        QVERIFY(area.choose("Preferences…"));
        QVERIFY(scene.shows("Settings"));
        QVERIFY(area.choose("About Brindle"));
        QVERIFY(scene.shows("Brindle"));
        QVERIFY(area.choose("About Brindle"));
        QVERIFY(closeWindow(scene.desktop.display(), "Settings"));
        QVERIFY(waitFor([&] { return windowTitles(scene.desktop.display()).size() == 2; }));
        // Nothing ends with the last window.
        QVERIFY(closeWindow(scene.desktop.display(), "Brindle"));
        QVERIFY(closeWindow(scene.desktop.display(), "Brindle Logs"));
        QVERIFY(waitFor([&] { return windowTitles(scene.desktop.display()).isEmpty(); }));
        QVERIFY(area.choose("View Logs…"));
        QVERIFY(scene.shows("Brindle Logs"));
        QVERIFY(area.choose("Quit"));
        QVERIFY(scene.hasEnded());
    }

    void iconFollowsThePanelAndTheTokensAge() {
        Scene scene;
        scene.start();
        QVERIFY(scene.isUp());
        QImage plain;
        for (int panel = 0; panel < 2; ++panel) { // one that comes late, and that again
            const StatusArea area(scene.desktop.bus());
            QVERIFY(waitFor([&] { return area.items().size() == 1; }));
            plain = area.picture();
            QVERIFY(plain.width() >= 32);
            QCOMPARE(area.toolTip(), "Brindle");
        }
        scene.brindle.reset();
        scene.start({{"tokenSavedAt", "1000000000"}});
        const StatusArea area(scene.desktop.bus());
        QVERIFY(waitFor([&] { return area.items().size() == 1; }));
        QVERIFY(area.picture() != plain);
        QCOMPARE(area.toolTip(), "Brindle — token rotation suggested");
    }

    void panelThatNeverAnswersHoldsNobodyUp() {
        Scene scene;
        QDBusConnection bus = scene.desktop.bus();
        SilentObject panel;
        const QString name = "org.kde.StatusNotifierWatcher";
        QVERIFY(bus.registerVirtualObject("/StatusNotifierWatcher", &panel));
        QVERIFY(bus.registerService(name));
        scene.start();
        QVERIFY(scene.isUp());
        for (int change = 0; change < 60; ++change) // each could cost a second
            bus.send(QDBusMessage::createSignal("/StatusNotifierWatcher", name,
                                                "StatusNotifierHostRegistered"));
        const ClipboardOwner owner(scene.desktop, scene.copied(record));
        QVERIFY(scene.brindle->activate("enrich-only"));
        QVERIFY(scene.clipboardBecomes(recordLink));
        QVERIFY(panel.wasAsked);
        QVERIFY(bus.unregisterService(name));
        bus.unregisterObject("/StatusNotifierWatcher");
        const StatusArea area(bus);
        QVERIFY(waitFor([&] { return area.items().size() == 1; }));
    }

    void iconIsEmbeddedInATrayThatComesLateAndAgain() {
        Scene scene({.windowManager = false, .keyring = true});
        scene.start();
        QVERIFY(scene.isUp());
        XConnection x(scene.desktop.display());
        for (int start = 0; start < 2; ++start) {
            StageProcess tray(scene.desktop.environment(), scene.desktop.home() + "/log/trayer");
            QVERIFY(tray.launch("trayer", {}));
            QVERIFY(waitFor([&] { return hasEmbeddedIcon(x, x.root()); }));
            tray.stop();
            QVERIFY(waitFor([&] { return !hasEmbeddedIcon(x, x.root()); }));
        }
        QVERIFY(scene.brindle->isUp());
    }

    void bothHotkeysPasteAndTheActionWithoutPastingDoesNot() {
        Scene scene;
        scene.start({{"hotkey2KeyCode", "40"}, {"hotkey2Modifiers", "6144"}});
        QVERIFY(scene.isUp());
        QVERIFY(scene.openTarget());
        {
            const ClipboardOwner owner(scene.desktop, scene.copied(record));
            QVERIFY(scene.brindle->activate("enrich-only"));
            QVERIFY(scene.clipboardBecomes(recordLink));
        }
        const ClipboardOwner owner(scene.desktop, scene.copied(record));
        scene.keys.chord({keyCode(KEY_LEFTCTRL), keyCode(KEY_LEFTALT), keyCode(KEY_K)});
        QVERIFY(scene.target->waitForPaste());
        QVERIFY(scene.clipboardBecomes(record));
        scene.press();
        QVERIFY(scene.target->waitForPaste(1));
        QVERIFY(scene.clipboardBecomes(record));
        QCOMPARE(scene.target->pasteCount(), 2);
    }

    void missingTokenIsAskedForAndLaunchAtLoginSwitched() {
        Scene scene({.notifications = true});
        scene.start();
        QVERIFY(scene.shown.waitForAccepted(1));
        QCOMPARE(scene.shown.notifications()[0].body,
                 "Set your Atlassian email + scoped API token in Preferences.");
        QVERIFY(waitFor([&] { return isActive(scene.desktop.display(), "Settings"); }));
        for (int i = 0; i < 4; ++i) // the sidebar and both hotkeys
            scene.keys.tap(keyCode(KEY_TAB));
        const QString entry = scene.desktop.environment().value("XDG_CONFIG_HOME") +
                              "/autostart/org.ostrowind.brindle.desktop";
        scene.keys.tap(keyCode(KEY_SPACE));
        QVERIFY(waitFor([&] { return QFile::exists(entry); }));
        // The desktop starts what the entry says.
        const QSettings file(entry, QSettings::IniFormat);
        QCOMPARE(file.value("Desktop Entry/Exec").toString(), BRINDLE_PROGRAM);
        scene.keys.tap(keyCode(KEY_SPACE));
        QVERIFY(waitFor([&] { return !QFile::exists(entry); }));
    }

    void secondStartOpensThePreferencesOfTheFirst() {
        Scene scene;
        scene.start();
        QVERIFY(scene.isUp());
        BrindleProcess second(scene.desktop, {});
        QVERIFY(waitFor([&] { return second.state() == QProcess::NotRunning; }));
        QVERIFY(scene.shows("Settings"));
        QVERIFY(scene.brindle->isUp());

        for (const qint64 id : scene.desktop.processes()) {
            if (QFile::symLinkTarget(QString("/proc/%1/exe").arg(id)).endsWith("/Xvfb"))
                kill(static_cast<pid_t>(id), SIGKILL);
        }
        QVERIFY2(scene.hasEnded(), "after its display has gone");
    }

    void terminatingGivesTheClipboardBackFirst() {
        Scene scene;
        scene.start();
        QVERIFY(scene.isUp());
        QVERIFY(scene.openTarget());
        const ClipboardOwner owner(scene.desktop, scene.copied(record));
        std::atomic<bool> isThere = false;
        auto saved = std::async(std::launch::async,
                                [&] { return handedOver(scene.desktop.display(), isThere); });
        QVERIFY(waitFor([&] { return isThere.load(); }));
        QVERIFY(scene.brindle->activate("enrich"));
        QVERIFY(scene.target->waitForPaste());
        kill(static_cast<pid_t>(scene.brindle->processId()), SIGTERM);
        QVERIFY(scene.hasEnded());
        QCOMPARE(saved.get(), record.toUtf8()); // what the user had copied, not the link
    }
};

QTEST_GUILESS_MAIN(TestE2eDesktop)
#include "test_e2e_desktop.moc"
