#include "platform/linux/x11/X11Connection.h"
#include "platform/linux/x11/X11Hotkeys.h"
#include "platform/linux/x11/X11Keyboard.h"
#include "platform/linux/x11/X11Pasteboard.h"
#include "stage/Actors.h"
#include "stage/ClipboardReader.h"
#include "stage/VirtualDesktop.h"
#include "stage/VirtualKeyboard.h"

#include <QElapsedTimer>
#include <QTest>

#include <linux/input-event-codes.h>

namespace {

/// The ports of one desktop, in this process.
struct Ports {
    Ports() {
        x11 = std::make_shared<X11Connection>();
        pasteboard = std::make_unique<X11Pasteboard>(x11);
        hotkeys = std::make_shared<X11Hotkeys>(x11);
        keyboard = std::make_unique<X11Keyboard>(x11, hotkeys);
    }

    std::shared_ptr<X11Connection> x11;
    std::unique_ptr<X11Pasteboard> pasteboard;
    std::shared_ptr<X11Hotkeys> hotkeys;
    std::unique_ptr<X11Keyboard> keyboard;
};

constexpr KeyCombo ctrlAltSuperV{9, 6400};

QByteArray utf16(const QString &text) {
    return QByteArray(reinterpret_cast<const char *>(text.utf16()), text.size() * 2);
}

} // namespace

class TestX11 : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        m_desktop = std::make_unique<VirtualDesktop>(DesktopOptions{.bus = false});
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
        qputenv("DISPLAY", m_desktop->display().toLocal8Bit());
        m_ports = std::make_unique<Ports>();
        QVERIFY(m_ports->x11->isOpen());
    }

    void cleanupTestCase() {
        m_ports.reset();
        m_desktop.reset();
    }

    void texts_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("type");
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *what, const QString &name, const QByteArray &data,
                            const QString &text, const QString &type = {}) {
            QTest::newRow(what) << name << type << data << text;
        };
        const QString mixed = "é — 🐞 <b>";
        row("UTF-8", "UTF8_STRING", mixed.toUtf8(), mixed);
        row("charset in other case", "text/plain;charset=UTF-8", mixed.toUtf8(), mixed);
        row("Latin-1", "STRING", "caf\xe9", "café");
        row("TEXT that comes as STRING", "TEXT", "caf\xe9", "café", "STRING");
        row("end mark counted in", "UTF8_STRING", QByteArray("abc\0", 4), "abc");
        row("HTML, UTF-8", "text/html", mixed.toUtf8(), mixed);
        row("HTML, UTF-16", "text/html", utf16("<a>" + mixed), "<a>" + mixed);
        row("HTML, UTF-16 with a mark", "text/html", "\xff\xfe" + utf16(mixed), mixed);
        row("empty", "UTF8_STRING", {}, "");
        row("3 MB", "UTF8_STRING", QByteArray(3'000'000, 'x'), QString(3'000'000, u'x'));
    }

    void texts() {
        QFETCH(QString, name);
        QFETCH(QString, type);
        QFETCH(QByteArray, data);
        const ClipboardOwner owner(*m_desktop, {{name, data, type}});
        QVERIFY(owner.ownsClipboard());
        const auto kind = name == "text/html" ? PasteboardType::Html : PasteboardType::String;
        QTEST(m_ports->pasteboard->text(kind).value_or("(nothing)"), "text");
        QCOMPARE(m_ports->pasteboard->text(kind == PasteboardType::Html ? PasteboardType::String
                                                                        : PasteboardType::Html),
                 std::nullopt);
    }

    void nobodyOwnsTheClipboard() {
        VirtualDesktop empty({.windowManager = false, .bus = false});
        QVERIFY(empty.problem().isEmpty());
        qputenv("DISPLAY", empty.display().toLocal8Bit());
        const Ports ports;
        qputenv("DISPLAY", m_desktop->display().toLocal8Bit());
        QCOMPARE(ports.pasteboard->text(PasteboardType::String), std::nullopt);
        QVERIFY(!ports.pasteboard->items());
    }

    void badOwners_data() {
        QTest::addColumn<QStringList>("behaviour");
        QTest::addColumn<int>("longest"); // ms, generous for a machine under load
        QTest::newRow("never answers") << QStringList{"--never-answer"} << 4000;
        QTest::newRow("dies in the middle") << QStringList{"--die-mid-transfer"} << 4000;
        QTest::newRow("drips without end") << QStringList{"--slow", "1000"} << 9000;
    }

    void badOwners() {
        QFETCH(QStringList, behaviour);
        QFETCH(int, longest);
        const QByteArray large(2'000'000, 'x');
        const ClipboardOwner owner(*m_desktop, {{"UTF8_STRING", large}, {"text/html", large}},
                                   behaviour);
        QVERIFY(owner.ownsClipboard());
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(m_ports->pasteboard->text(PasteboardType::String), std::nullopt);
        QCOMPARE(m_ports->pasteboard->text(PasteboardType::Html), std::nullopt);
        QVERIFY2(timer.elapsed() < longest, qPrintable(QString::number(timer.elapsed())));
        // And the next owner is read as ever.
        const ClipboardOwner good(*m_desktop, {{"UTF8_STRING", "fine"}});
        QTRY_COMPARE(m_ports->pasteboard->text(PasteboardType::String), "fine");
    }

    void snapshotComesBackByteForByte() {
        const QList<OwnedFlavour> flavours{
            {"text/html", QByteArray("<b>\0\xff</b>", 9)},
            {"TEXT", "caf\xe9", "STRING"},
            {"UTF8_STRING", "café"},
            {"application/x-private", "private"},
            {"image/png", "png"},
            {"text/uri-list", "file:///a\r\n"},
        };
        QList<QList<PasteboardOffer>> items;
        PasteboardItem kept;
        {
            const ClipboardOwner owner(*m_desktop, flavours);
            QVERIFY(owner.ownsClipboard());
            items = m_ports->pasteboard->items().value();
            QList<PasteboardOffer> known;
            for (const PasteboardOffer &offer : items.constFirst()) {
                if (offer.type)
                    known.append(offer);
            }
            kept = m_ports->pasteboard->read(0, known);
        }
        QCOMPARE(items.constFirst().size(), flavours.size()); // neither TARGETS nor its like
        m_ports->pasteboard->restore({kept});
        const auto given = readElsewhere({"text/html", "TEXT", "UTF8_STRING", "text/uri-list"});
        QCOMPARE(given.data,
                 (QList<QByteArray>{flavours[0].data, "caf\xe9", "café", "file:///a\r\n"}));
        QCOMPARE(given.types, (QStringList{"text/html", "STRING", "UTF8_STRING", "text/uri-list"}));
        QVERIFY(!given.targets.contains("image/png"));
    }

    void whatWeWriteIsReadElsewhere() {
        const QByteArray large(1'500'000, 'h');
        m_ports->pasteboard->write(
            {{PasteboardType::Html, large}, {PasteboardType::String, "é 🐞"}});
        const auto given = readElsewhere({"UTF8_STRING", "text/plain;charset=utf-8", "text/html"});
        QCOMPARE(given.data, (QList<QByteArray>{"é 🐞", "é 🐞", large}));
        QVERIFY(!given.targets.contains("STRING")); // it has no 🐞
        QTRY_VERIFY(!m_ports->pasteboard->fetches().transferRunning);
        QVERIFY(m_ports->pasteboard->fetches().latest);
    }

    void askingWhatThereIsIsNoFetch() {
        m_ports->pasteboard->write({{PasteboardType::String, "x"}});
        readElsewhere({});
        QVERIFY(!m_ports->pasteboard->fetches().latest);
    }

    void changeCountSeesOthersAndCountsOursOnce() {
        X11Pasteboard &pasteboard = *m_ports->pasteboard;
        pasteboard.write({{PasteboardType::String, "mine"}});
        const qint64 mine = pasteboard.changeCount();
        pasteboard.write({{PasteboardType::String, "mine again"}});
        QCOMPARE(pasteboard.changeCount(), mine + 1);
        {
            // A clipboard manager that takes over what we wrote is no new copy.
            const ClipboardOwner manager(*m_desktop, {{"UTF8_STRING", "mine again"}});
            QVERIFY(manager.ownsClipboard());
            QCOMPARE(pasteboard.changeCount(), mine + 1);
        }
        pasteboard.write({{PasteboardType::String, "third"}});
        const qint64 third = pasteboard.changeCount();
        const ClipboardOwner user(*m_desktop, {{"UTF8_STRING", "user's"}});
        QVERIFY(user.ownsClipboard());
        QVERIFY(pasteboard.changeCount() > third);
    }

    void hotkeyFiresOncePerPressWithAnyLock() {
        int presses = 0;
        QVERIFY(m_ports->hotkeys->add(ctrlAltSuperV, [&] { ++presses; }));
        VirtualKeyboard keys(m_desktop->keyboardDisplay());
        const auto press = [&] {
            keys.chord({keyCode(KEY_LEFTCTRL), keyCode(KEY_LEFTALT), keyCode(KEY_LEFTMETA),
                        keyCode(KEY_V)});
        };
        press();
        QVERIFY(waitFor([&] { return presses == 1; }));
        keys.tap(keyCode(KEY_CAPSLOCK));
        keys.tap(keyCode(KEY_NUMLOCK));
        press();
        const bool fired = waitFor([&] { return presses == 2; });
        keys.tap(keyCode(KEY_CAPSLOCK));
        keys.tap(keyCode(KEY_NUMLOCK));
        QVERIFY(fired);

        for (const int key : {KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA, KEY_V})
            keys.press(keyCode(key));
        QVERIFY(waitFor([&] { return presses == 3; }));
        QTest::qWait(1500); // long enough to repeat many times
        QCOMPARE(presses, 3);
        for (const int key : {KEY_V, KEY_LEFTMETA, KEY_LEFTALT, KEY_LEFTCTRL})
            keys.release(keyCode(key));
        m_ports->hotkeys->removeAll();
        press();
        m_ports->x11->sync();
        QCOMPARE(presses, 3);
    }

    void takenHotkeyIsRefusedAndLeavesNothingGrabbed() {
        const Ports other;
        QVERIFY(other.hotkeys->add(ctrlAltSuperV, [] {}));
        QVERIFY(!m_ports->hotkeys->add(ctrlAltSuperV, [] {}));
        other.hotkeys->removeAll();
        other.x11->sync();
        QVERIFY(m_ports->hotkeys->add(ctrlAltSuperV, [] {}));
        m_ports->hotkeys->removeAll();
        QVERIFY(!m_ports->hotkeys->add({0x7f, 256}, [] {}));  // no such key
        QVERIFY(!m_ports->hotkeys->add({9, 0x10000}, [] {})); // no modifier we know
    }

    void layout_data() {
        QTest::addColumn<QStringList>("setxkbmap");
        QTest::addColumn<int>("key"); // the ANSI place that types "v", -1 for none
        QTest::newRow("US") << QStringList{"us"} << 9;
        QTest::newRow("Dvorak") << QStringList{"us", "-variant", "dvorak"} << 47;
        QTest::newRow("Greek") << QStringList{"gr"} << -1;
        QTest::newRow("Dvorak second, US in force")
            << QStringList{"us,us", "-variant", ",dvorak"} << 9;
    }

    void layout() {
        QFETCH(QStringList, setxkbmap);
        QProcess process;
        process.setProcessEnvironment(m_desktop->environment());
        process.start("setxkbmap", setxkbmap);
        QVERIFY(process.waitForFinished() && process.exitCode() == 0);
        const KeyLayout layout = m_ports->keyboard->currentLayout().value();
        const auto found = std::find(layout.begin(), layout.end(), U'v');
        QTEST(found == layout.end() ? -1 : static_cast<int>(found - layout.begin()), "key");
        process.start("setxkbmap", {"us"});
        QVERIFY(process.waitForFinished());
    }

private:
    struct Given {
        QStringList targets;
        QList<QByteArray> data;
        QStringList types;
    };

    /// Reads as another program, in a thread of its own, while this one answers.
    Given readElsewhere(const QStringList &targets) {
        Given given;
        bool done = false;
        std::thread reader([&, display = m_desktop->display()] {
            ClipboardReader clipboard(display, 15000);
            given.targets = clipboard.targets().value_or(QStringList());
            for (const QString &target : targets) {
                given.data.append(clipboard.data(target).value_or("(nothing)"));
                given.types.append(clipboard.type());
            }
            QMetaObject::invokeMethod(
                this, [&] { done = true; }, Qt::QueuedConnection);
        });
        waitFor([&] { return done; }, 60000);
        reader.join();
        return given;
    }

    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<Ports> m_ports;
};

QTEST_MAIN(TestX11)
#include "test_platform_x11.moc"
