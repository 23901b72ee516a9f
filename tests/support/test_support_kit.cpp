#include "support/ClipboardReader.h"
#include "support/Helpers.h"
#include "support/JsonLines.h"
#include "support/NotificationLog.h"
#include "support/TestKeyboard.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDir>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;

#define VERIFY_DESKTOP(desktop)                                                                    \
    QVERIFY2((desktop).problem().isEmpty(), qPrintable((desktop).problem()))

namespace {

const DesktopOptions bare{.windowManager = false, .bus = false};
const DesktopOptions everything{
    .physicalKeyboard = true, .notifications = true, .keyring = true, .accessibility = true};

// Bytes of which no two chunks are alike.
QByteArray manyBytes(qsizetype size) {
    QByteArray bytes(size, '\0');
    uint32_t state = 1;
    for (char &byte : bytes)
        byte = static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
    return bytes;
}

// One that has ended and is not yet waited for has no executable any more.
bool isRunning(qint64 id) {
    return !QFile::symLinkTarget(u"/proc/%1/exe"_s.arg(id)).isEmpty();
}

bool ctrlV(TestKeyboard &keyboard) {
    return keyboard.chord({keyCode(KEY_LEFTCTRL), keyCode(KEY_V)});
}

bool isKeyboardGrabbed(const QString &display) {
    const XConnection x(display);
    const XOwned<xcb_grab_keyboard_reply_t> reply(
        xcb_grab_keyboard_reply(x.get(),
                                xcb_grab_keyboard(x.get(), 0, x.root(), XCB_CURRENT_TIME,
                                                  XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                nullptr));
    return reply && reply->status == XCB_GRAB_STATUS_ALREADY_GRABBED;
}

// The server tells every client when another keyboard than before is typed on.
bool hasChangedKeyboard(const XConnection &x) {
    bool changed = false;
    x.sync();
    while (const auto event = x.nextEvent(QDeadlineTimer(0)))
        changed = changed || (event->response_type & 0x7f) == XCB_MAPPING_NOTIFY;
    return changed;
}

// Not through QDBusInterface, which leaks what it reads about the object.
QDBusMessage callBus(const QDBusConnection &bus, const QString &service, const QString &path,
                     const QString &method, const QVariantList &arguments = {}) {
    const qsizetype dot = method.lastIndexOf(u'.');
    auto message =
        QDBusMessage::createMethodCall(service, path, method.first(dot), method.sliced(dot + 1));
    message.setArguments(arguments);
    return bus.call(message);
}

QVariant busProperty(const QDBusConnection &bus, const QString &service, const QString &path,
                     const QString &interface, const QString &name) {
    const QDBusReply<QDBusVariant> reply =
        callBus(bus, service, path, u"org.freedesktop.DBus.Properties.Get"_s, {interface, name});
    return reply.value().variant();
}

// Whether an accessible object or one of those inside it has that role.
bool hasRole(const QDBusConnection &bus, const QString &service, const QString &path, uint role) {
    const QString accessible = u"org.a11y.atspi.Accessible."_s;
    if (callBus(bus, service, path, accessible + u"GetRole"_s).arguments().value(0) == role)
        return true;
    const QDBusMessage answer = callBus(bus, service, path, accessible + u"GetChildren"_s);
    const auto children = answer.arguments().value(0).value<QDBusArgument>();
    if (children.currentType() != QDBusArgument::ArrayType)
        return false;
    bool found = false;
    for (children.beginArray(); !children.atEnd();) {
        QString childService;
        QDBusObjectPath child;
        children.beginStructure();
        children >> childService >> child;
        children.endStructure();
        found = found || hasRole(bus, childService, child.path(), role);
    }
    children.endArray();
    return found;
}

// What a crashing test does: it brings up a desktop and never comes to its end.
int crash() {
    const TestDesktop desktop(everything);
    const PasteTarget target(desktop);
    say(u"crashing"_s, {{u"home"_s, desktop.home()}, {u"problem"_s, desktop.problem()}});
    return raise(SIGKILL);
}

} // namespace

class TestSupportKit : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readsWhatAnotherProgramOwns_data() {
        QTest::addColumn<qsizetype>("size");
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("nothing") << qsizetype(0) << QStringList();
        QTest::newRow("one piece") << qsizetype(1000) << QStringList();
        QTest::newRow("chunks") << qsizetype(3'000'000) << QStringList();
        QTest::newRow("slow") << qsizetype(50'000) << QStringList{u"--slow"_s, u"100000"_s};
    }

    void readsWhatAnotherProgramOwns() {
        QFETCH(const qsizetype, size);
        QFETCH(const QStringList, arguments);
        const TestDesktop desktop(bare);
        VERIFY_DESKTOP(desktop);
        ClipboardReader reader(desktop.display(), 15000);
        QCOMPARE(reader.owner(), xcb_window_t(XCB_NONE));
        const QByteArray bytes = manyBytes(size);
        ClipboardOwner owner(desktop, {{u"text/html"_s, bytes}, {u"TEXT"_s, "t", u"STRING"_s}},
                             arguments);
        QVERIFY(owner.ownsClipboard());
        QVERIFY(reader.owner() != XCB_NONE);
        const QStringList names{u"TARGETS"_s, u"TIMESTAMP"_s, u"text/html"_s, u"TEXT"_s};
        QCOMPARE(reader.targets().value_or(QStringList()), names);
        const auto read = reader.data(u"text/html"_s);
        QVERIFY2(read.has_value(), qPrintable(reader.problem()));
        QVERIFY(*read == bytes);
        QCOMPARE(reader.type(), u"text/html"_s);
        QCOMPARE(owner.waitForEvent(u"served"_s)[u"bytes"].toInteger(), size);
        QCOMPARE(reader.data(u"TEXT"_s).value_or(QByteArray()), "t");
        QCOMPARE(reader.type(), u"STRING"_s);
        QVERIFY(!reader.data(u"image/png"_s));
        QCOMPARE(reader.problem(), u"refused"_s);

        const ClipboardOwner next(desktop, {{u"TEXT"_s, "u"}});
        QVERIFY(next.ownsClipboard());
        QVERIFY(!owner.waitForEvent(u"cleared"_s).isEmpty());
        QVERIFY(!owner.ownsClipboard());
    }

    void badOwnersEndInTime_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("tellsTargets");
        QTest::addColumn<int>("patience"); // short only where no answer comes anyway
        QTest::addColumn<QString>("problem");
        QTest::newRow("silent") << QStringList{u"--never-answer"_s} << false << 300
                                << u"no answer"_s;
        QTest::newRow("targets only")
            << QStringList{u"--targets-only"_s} << true << 300 << u"no answer"_s;
        QTest::newRow("too slow") << QStringList{u"--slow"_s, u"100"_s} << true << 3000
                                  << u"stopped after"_s;
        QTest::newRow("dying") << QStringList{u"--die-mid-transfer"_s} << true << 3000
                               << u"stopped after 1000 bytes"_s;
    }

    void badOwnersEndInTime() {
        QFETCH(const QStringList, arguments);
        QFETCH(const bool, tellsTargets);
        QFETCH(const int, patience);
        QFETCH(const QString, problem);
        const TestDesktop desktop(bare);
        VERIFY_DESKTOP(desktop);
        ClipboardOwner owner(desktop, {{u"UTF8_STRING"_s, manyBytes(1000)}}, arguments);
        QVERIFY(owner.ownsClipboard());
        ClipboardReader reader(desktop.display(), patience);
        QCOMPARE(
            ClipboardReader(desktop.display(), tellsTargets ? 15000 : 300).targets().has_value(),
            tellsTargets);
        QVERIFY(!reader.data(u"UTF8_STRING"_s));
        QVERIFY2(reader.problem().startsWith(problem), qPrintable(reader.problem()));
        const bool dies = arguments.contains(u"--die-mid-transfer"_s);
        QVERIFY(!dies || waitFor([&] { return owner.state() == QProcess::NotRunning; }));
        QCOMPARE(reader.owner() == XCB_NONE, dies);
    }

    void pastesByKeys_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("pastedBy"); // of Ctrl+V, then Ctrl+Shift+V
        QTest::newRow("editor") << QStringList() << u"Ctrl+V"_s;
        QTest::newRow("named") << QStringList{u"--wm-class"_s, u"xterm"_s}
                               << u"Ctrl+V Ctrl+Shift+V"_s;
        QTest::newRow("terminal") << QStringList{u"--terminal"_s} << u"Ctrl+Shift+V"_s;
    }

    void pastesByKeys() {
        QFETCH(const QStringList, arguments);
        QFETCH(const QString, pastedBy);
        const TestDesktop desktop;
        VERIFY_DESKTOP(desktop);
        const ClipboardOwner owner(desktop, {{u"text/html"_s, "<b>bold</b>"},
                                             {u"text/rtf"_s, "{\\rtf1 \xff}"},
                                             {u"UTF8_STRING"_s, "bold"}});
        PasteTarget target(desktop, arguments);
        QVERIFY(waitFor([&] { return target.hasFocus(); }));
        TestKeyboard keyboard(desktop.keyboardDisplay());
        QVERIFY(ctrlV(keyboard));
        QVERIFY(keyboard.chord({keyCode(KEY_LEFTCTRL), keyCode(KEY_LEFTSHIFT), keyCode(KEY_V)}));
        QVERIFY(keyboard.tap(keyCode(KEY_X)));
        QVERIFY(waitFor([&] { return target.typed() == u"x"; }));
        QStringList by;
        for (qsizetype i = 0; i < target.pasteCount(); ++i) {
            const auto paste = target.waitForPaste(i);
            by.append(paste->via);
            QCOMPARE(paste->text, u"bold"_s);
            QCOMPARE(paste->html, u"<b>bold</b>"_s);
            QCOMPARE(paste->rtf, "{\\rtf1 \xff}");
            QVERIFY(paste->formats.contains(u"text/rtf"_s));
        }
        QCOMPARE(by.join(u' '), pastedBy);
        QCOMPARE(heldKeys(desktop.display()), QList<int>());
    }

    void targetObeys() {
        const TestDesktop desktop;
        VERIFY_DESKTOP(desktop);
        const ClipboardOwner owner(desktop, {{u"UTF8_STRING"_s, "secret"}});
        PasteTarget target(desktop);
        QVERIFY(waitFor([&] { return target.hasFocus(); }));
        TestKeyboard keyboard(desktop.keyboardDisplay());

        QVERIFY(target.command(u"password on"_s));
        QVERIFY(ctrlV(keyboard) && keyboard.tap(keyCode(KEY_V)));
        QVERIFY(waitFor([&] { return target.typed() == u"v"; }));
        QCOMPARE(target.pasteCount(), 1);
        QVERIFY(target.command(u"password off"_s));
        target.forgetEvents();

        QVERIFY(target.command(u"grab on"_s));
        QVERIFY(isKeyboardGrabbed(desktop.display()));
        QVERIFY(target.command(u"grab off"_s));
        QVERIFY(waitFor([&] { return !isKeyboardGrabbed(desktop.display()); }));

        QElapsedTimer sinceBusy;
        sinceBusy.start();
        target.send(u"busy 700"_s);
        QVERIFY(!target.waitForEvent(u"busy"_s).isEmpty());
        QVERIFY(ctrlV(keyboard));
        QVERIFY(target.waitForPaste());
        QVERIFY(sinceBusy.elapsed() >= 700);
        QVERIFY(!target.command(u"dance"_s));

        target.send(u"quit"_s);
        QVERIFY(waitFor([&] { return target.state() == QProcess::NotRunning; }));
        QCOMPARE(target.exitCode(), 0);
    }

    void physicalKeysAreApartFromFakedOnes() {
        const TestDesktop desktop({.physicalKeyboard = true});
        VERIFY_DESKTOP(desktop);
        QVERIFY(desktop.display() != desktop.keyboardDisplay());
        PasteTarget target(desktop);
        QVERIFY(waitFor([&] { return target.hasFocus(); }));
        const XConnection x(desktop.display());
        TestKeyboard hands(desktop.keyboardDisplay()), faked(desktop.display());
        const int control = keyCode(KEY_LEFTCTRL);
        QVERIFY(hands.press(control));
        QVERIFY(waitFor([&] { return heldKeys(desktop.display()) == QList<int>{control}; }));
        QCOMPARE(modifiersInForce(desktop.display()), XCB_MOD_MASK_CONTROL);
        QVERIFY(hasChangedKeyboard(x));
        QVERIFY(hands.tap(keyCode(KEY_F8)));
        const auto keys = [&] { return target.events(u"key"_s).size(); };
        QVERIFY(waitFor([&] { return keys() == 3; }));
        QVERIFY(!hasChangedKeyboard(x));
        QVERIFY(faked.tap(keyCode(KEY_F8)));
        QVERIFY(waitFor([&] { return keys() == 5; }));
        QVERIFY(hasChangedKeyboard(x));
        QVERIFY(heldKeys(desktop.display()).contains(control));
        QVERIFY(hands.release(control));
        QVERIFY(waitFor([&] { return heldKeys(desktop.display()).isEmpty(); }));
        QCOMPARE(modifiersInForce(desktop.display()), 0);
    }

    void logsNotifications_data() {
        QTest::addColumn<bool>("daemon");
        QTest::newRow("shown") << true;
        QTest::newRow("nobody shows them") << false;
    }

    void logsNotifications() {
        QFETCH(const bool, daemon);
        const TestDesktop desktop({.notifications = daemon});
        VERIFY_DESKTOP(desktop);
        const NotificationLog log(desktop.busAddress());
        QVERIFY2(log.problem().isEmpty(), qPrintable(log.problem()));
        const QDBusMessage answer =
            callBus(desktop.bus(), u"org.freedesktop.Notifications"_s,
                    u"/org/freedesktop/Notifications"_s, u"org.freedesktop.Notifications.Notify"_s,
                    {u"kit"_s, 0u, u"icon"_s, u"Title &"_s, u"a &lt; <b>ü</b>"_s,
                     QStringList{u"default"_s, u"Open"_s}, QVariantMap(), -1});
        QVERIFY(waitFor([&] {
            const auto all = log.notifications();
            return all.size() == 1 && (all[0].id != 0 || !all[0].error.isEmpty());
        }));
        const ShownNotification shown = log.notifications().first();
        QCOMPARE(shown.application, u"kit"_s);
        QCOMPARE(shown.icon, u"icon"_s);
        QCOMPARE(shown.title, u"Title &"_s);
        QCOMPARE(shown.body, u"a &lt; <b>ü</b>"_s);
        QCOMPARE(shown.actions, (QStringList{u"default"_s, u"Open"_s}));
        QCOMPARE(shown.id, daemon ? answer.arguments().value(0).toUInt() : 0);
        QCOMPARE(shown.error, answer.errorName());
        QCOMPARE(log.waitForAccepted(1, daemon ? 15000 : 100), daemon);
    }

    void servicesWork() {
        qputenv("WAYLAND_DISPLAY", "developer");
        const TestDesktop desktop(everything);
        VERIFY_DESKTOP(desktop);
        QVERIFY(!desktop.environment().contains(u"WAYLAND_DISPLAY"_s));
        const QDBusReply<QDBusObjectPath> collection =
            callBus(desktop.bus(), u"org.freedesktop.secrets"_s, u"/org/freedesktop/secrets"_s,
                    u"org.freedesktop.Secret.Service.ReadAlias"_s, {u"default"_s});
        QCOMPARE(busProperty(desktop.bus(), u"org.freedesktop.secrets"_s, collection.value().path(),
                             u"org.freedesktop.Secret.Collection"_s, u"Locked"_s),
                 QVariant(false));

        PasteTarget target(desktop);
        const QDBusReply<QString> address = callBus(
            desktop.bus(), u"org.a11y.Bus"_s, u"/org/a11y/bus"_s, u"org.a11y.Bus.GetAddress"_s);
        const auto bus = QDBusConnection::connectToBus(address.value(), u"accessibility"_s);
        const auto tellsOfPassword = [&] {
            constexpr uint passwordText = 40; // ATSPI_ROLE_PASSWORD_TEXT
            return hasRole(bus, u"org.a11y.atspi.Registry"_s, u"/org/a11y/atspi/accessible/root"_s,
                           passwordText);
        };
        QVERIFY(waitFor([&] { return target.hasFocus(); }));
        QVERIFY(target.command(u"password on"_s));
        QVERIFY(waitFor(tellsOfPassword));
        QDBusConnection::disconnectFromBus(u"accessibility"_s);
    }

    void leavesNothing() {
        auto desktop = std::make_unique<TestDesktop>(everything);
        VERIFY_DESKTOP(*desktop);
        const QString home = desktop->home();
        const QStringList displays{desktop->display(), desktop->keyboardDisplay()};
        const QList<qint64> programs = desktop->processes();
        QVERIFY(programs.size() >= 8); // with the accessibility bus, which is not our child
        QTest::failOnWarning(QRegularExpression(u"killed$"_s)); // nothing has to be forced
        desktop.reset();
        for (const qint64 program : programs)
            QVERIFY(!isRunning(program));
        QVERIFY(!QDir(home).exists());
        for (const QString &display : displays)
            QVERIFY(!XConnection(display).isValid());
    }

    void programsDieWithACrashingTest() {
        TestProcess test(QProcessEnvironment::systemEnvironment());
        QVERIFY(test.launch(QCoreApplication::applicationFilePath(), {u"--crash"_s}));
        const QJsonObject last = test.waitForEvent(u"crashing"_s);
        QCOMPARE(last[u"problem"].toString(u"none"_s), QString());
        QVERIFY(waitFor([&] { return test.state() == QProcess::NotRunning; }));
        QCOMPARE(test.exitStatus(), QProcess::CrashExit);
        const QString home = last[u"home"].toString();
        const bool gone = waitFor([&] { return TestDesktop::processesAt(home).isEmpty(); });
        for (const qint64 id : TestDesktop::processesAt(home))
            kill(static_cast<pid_t>(id), SIGKILL);
        QVERIFY(gone);
        QVERIFY(QDir(home).removeRecursively());
    }
};

int main(int argc, char **argv) {
    QCoreApplication application(argc, argv);
    if (application.arguments().contains(u"--crash"_s))
        return crash();
    TestSupportKit test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_support_kit.moc"
