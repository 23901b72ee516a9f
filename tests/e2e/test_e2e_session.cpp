#include "stage/BrindleProcess.h"
#include "stage/VirtualDesktop.h"
#include "stage/VirtualKeyboard.h"
#include "stage/Windows.h"
#include "stage/XConnection.h"

#include <QFile>
#include <QSettings>
#include <QTest>

#include <csignal>

namespace {

/// Whether a window that can be embedded is seen inside another one. Every window of the toolkit
/// can be, so this is for displays without a window manager and its frames.
bool hasEmbeddedIcon(XConnection &x, xcb_window_t window, bool isInside = false) {
    const XOwned<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(x.get(), xcb_query_tree(x.get(), window), nullptr));
    if (!tree)
        return false;
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        const xcb_window_t child = xcb_query_tree_children(tree.get())[i];
        const auto asked = xcb_get_property(x.get(), 0, child, x.atom("_XEMBED_INFO"),
                                            XCB_GET_PROPERTY_TYPE_ANY, 0, 2);
        const XOwned<xcb_get_property_reply_t> info(
            xcb_get_property_reply(x.get(), asked, nullptr));
        const XOwned<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
            x.get(), xcb_get_window_attributes(x.get(), child), nullptr));
        const bool isSeen = attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
        if (isInside && isSeen && info && xcb_get_property_value_length(info.get()) > 0)
            return true;
        if (hasEmbeddedIcon(x, child, true))
            return true;
    }
    return false;
}

} // namespace

class TestE2eSession : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void launchAtLoginIsSwitchedInThePreferences() {
        VirtualDesktop desktop;
        QVERIFY(desktop.problem().isEmpty());
        // Without credentials the preferences open by themselves.
        BrindleProcess brindle(desktop, {});
        QVERIFY(waitFor([&] { return isActive(desktop.display(), "Settings"); }));
        VirtualKeyboard keys(desktop.keyboardDisplay());
        for (int i = 0; i < 4; ++i) // the sidebar and both hotkeys
            keys.tap(keyCode(KEY_TAB));
        const QString entry = desktop.environment().value("XDG_CONFIG_HOME") +
                              "/autostart/org.ostrowind.brindle.desktop";
        keys.tap(keyCode(KEY_SPACE));
        QVERIFY(waitFor([&] { return QFile::exists(entry); }));
        // The desktop starts what the entry says.
        const QSettings file(entry, QSettings::IniFormat);
        QCOMPARE(file.value("Desktop Entry/Exec").toString(), BRINDLE_PROGRAM);
        keys.tap(keyCode(KEY_SPACE));
        QVERIFY(waitFor([&] { return !QFile::exists(entry); }));
    }

    void iconIsEmbeddedInATrayThatComesLateAndAgain() {
        VirtualDesktop desktop({.windowManager = false});
        QVERIFY(desktop.problem().isEmpty());
        BrindleProcess brindle(desktop, {});
        QVERIFY(brindle.isUp());
        XConnection x(desktop.display());
        for (int start = 0; start < 2; ++start) {
            StageProcess tray(desktop.environment(), desktop.home() + "/log/trayer");
            QVERIFY(tray.launch("trayer", {}));
            QVERIFY(waitFor([&] { return hasEmbeddedIcon(x, x.root()); }));
            tray.stop();
            QVERIFY(waitFor([&] { return !hasEmbeddedIcon(x, x.root()); }));
        }
        QVERIFY(brindle.isUp());
    }

    void displayThatGoesAwayEndsBrindle() {
        VirtualDesktop desktop;
        QVERIFY(desktop.problem().isEmpty());
        BrindleProcess brindle(desktop, {});
        QVERIFY(brindle.isUp());
        for (const qint64 id : desktop.processes()) {
            if (QFile::symLinkTarget(QString("/proc/%1/exe").arg(id)).endsWith("/Xvfb"))
                kill(static_cast<pid_t>(id), SIGKILL);
        }
        QVERIFY(waitFor([&] { return brindle.state() == QProcess::NotRunning; }));
        QCOMPARE(brindle.exitStatus(), QProcess::NormalExit);
    }
};

QTEST_GUILESS_MAIN(TestE2eSession)
#include "test_e2e_session.moc"
