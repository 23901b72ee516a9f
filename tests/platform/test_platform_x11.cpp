#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Hotkeys.h"
#include "platform/x11/X11Keyboard.h"
#include "platform/x11/X11Pasteboard.h"
#include "stage/Actors.h"
#include "stage/ClipboardReader.h"
#include "stage/VirtualDesktop.h"
#include "stage/VirtualKeyboard.h"

#include <QElapsedTimer>
#include <QTest>

#include <future>

using namespace std::chrono_literals;

namespace {

/// The ports of one desktop, in this process.
struct Ports {
    std::shared_ptr<X11Connection> x11 = std::make_shared<X11Connection>();
    std::unique_ptr<X11Pasteboard> pasteboard = std::make_unique<X11Pasteboard>(x11);
    std::shared_ptr<X11Hotkeys> hotkeys = std::make_shared<X11Hotkeys>(x11);
    std::unique_ptr<X11Keyboard> keyboard = std::make_unique<X11Keyboard>(x11, hotkeys);
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

    void nobodyOwnsTheClipboard() { // yet
        QCOMPARE(m_ports->pasteboard->text(PasteboardType::String), std::nullopt);
        QVERIFY(!m_ports->pasteboard->items());
    }

    void texts() {
        const QString mixed = "é — 🐞 <b>";
        const QList<std::pair<OwnedFlavour, QString>> cases{
            {{"UTF8_STRING", mixed.toUtf8()}, mixed},
            {{"text/plain;charset=UTF-8", mixed.toUtf8()}, mixed},
            {{"TEXT", "caf\xe9", "STRING"}, "café"},
            {{"UTF8_STRING", QByteArray("abc\0", 4)}, "abc"}, // the end mark is counted in
            {{"text/html", utf16("<a>" + mixed)}, "<a>" + mixed},
            {{"text/html", "\xff\xfe" + utf16(mixed)}, mixed},
            {{"UTF8_STRING", {}}, ""},
            {{"UTF8_STRING", QByteArray(3'000'000, 'x')}, QString(3'000'000, u'x')},
        };
        for (const auto &[flavour, text] : cases) {
            const ClipboardOwner owner(*m_desktop, {flavour});
            QVERIFY(owner.ownsClipboard());
            auto kind = PasteboardType::String, other = PasteboardType::Html;
            if (flavour.name == "text/html")
                std::swap(kind, other);
            QCOMPARE(m_ports->pasteboard->text(kind).value_or("(nothing)"), text);
            QCOMPARE(m_ports->pasteboard->text(other), std::nullopt);
        }
    }

    void badOwners() {
        const QByteArray large(2'000'000, 'x');
        for (const QStringList &behaviour :
             {QStringList{"--never-answer"}, {"--die-mid-transfer"}, {"--slow", "1000"}}) {
            const ClipboardOwner owner(*m_desktop, {{"UTF8_STRING", large}, {"text/html", large}},
                                       behaviour);
            QVERIFY(owner.ownsClipboard());
            QElapsedTimer timer;
            timer.start();
            QCOMPARE(m_ports->pasteboard->text(PasteboardType::String), std::nullopt);
            QCOMPARE(m_ports->pasteboard->text(PasteboardType::Html), std::nullopt);
            // Who drips without end has five seconds, others one.
            QVERIFY2(timer.elapsed() < (behaviour.size() > 1 ? 9000 : 4000),
                     qPrintable(behaviour[0] + QString::number(timer.elapsed())));
            // And the next owner is read as ever.
            const ClipboardOwner good(*m_desktop, {{"UTF8_STRING", "fine"}});
            QTRY_COMPARE(m_ports->pasteboard->text(PasteboardType::String), "fine");
        }
        // One that is silent only about what it does not offer is read nevertheless.
        const ClipboardOwner odd(*m_desktop, {{"text/plain;charset=utf-8", "odd"}},
                                 {"--never-refuse"});
        QTRY_COMPARE(m_ports->pasteboard->text(PasteboardType::String), "odd");
    }

    void snapshotComesBackByteForByte() {
        const QByteArray html("<b>\0\xff</b>", 9);
        QList<QList<PasteboardOffer>> items;
        PasteboardItem kept;
        {
            const ClipboardOwner owner(*m_desktop, {{"text/html", html},
                                                    {"TEXT", "caf\xe9", "STRING"},
                                                    {"UTF8_STRING", "café"},
                                                    {"application/x-private", "private"},
                                                    {"image/png", "png"},
                                                    {"text/uri-list", "file:///a\r\n"}});
            QVERIFY(owner.ownsClipboard());
            items = m_ports->pasteboard->items().value();
            QCOMPARE(items.constFirst().size(), 6); // neither TARGETS nor its like
            items[0].removeIf([](const PasteboardOffer &offer) { return !offer.type; });
            kept = m_ports->pasteboard->read(0, items[0]);
        }
        m_ports->pasteboard->restore({kept});
        const auto given = readElsewhere({"text/html", "TEXT", "UTF8_STRING", "text/uri-list"});
        QCOMPARE(given.data, (QList<QByteArray>{html, "caf\xe9", "café", "file:///a\r\n"}));
        QCOMPARE(given.types, (QStringList{"text/html", "STRING", "UTF8_STRING", "text/uri-list"}));
        QVERIFY(!given.targets.contains("image/png"));
    }

    void whatWeWriteIsReadElsewhere() {
        X11Pasteboard &pasteboard = *m_ports->pasteboard;
        const QByteArray large(1'500'000, 'h');
        pasteboard.write({{PasteboardType::Html, large}, {PasteboardType::String, "é 🐞"}});
        QVERIFY(!readElsewhere({}).targets.contains("STRING")); // it has no 🐞
        QVERIFY(!pasteboard.fetches().latest); // to ask what there is is to fetch nothing
        const auto given = readElsewhere({"UTF8_STRING", "text/plain;charset=utf-8", "text/html"});
        QCOMPARE(given.data, (QList<QByteArray>{"é 🐞", "é 🐞", large}));
        QTRY_VERIFY(!pasteboard.fetches().transferRunning);
        QVERIFY(pasteboard.fetches().latest);
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
        const QList<int> hotkey{keyCode(KEY_LEFTCTRL), keyCode(KEY_LEFTALT), keyCode(KEY_LEFTMETA),
                                keyCode(KEY_V)};
        const auto press = [&] { keys.chord({hotkey[0], hotkey[1], hotkey[2], hotkey[3]}); };
        press();
        QVERIFY(waitFor([&] { return presses == 1; }));
        for (int times = 0; times < 2; ++times) { // on and off
            keys.tap(keyCode(KEY_CAPSLOCK));
            keys.tap(keyCode(KEY_NUMLOCK));
            press();
            QVERIFY(waitFor([&] { return presses == 2 + times; }));
        }
        for (const int key : hotkey)
            keys.press(key);
        QVERIFY(waitFor([&] { return presses == 4; }));
        QTest::qWait(1500); // long enough to repeat many times
        QCOMPARE(presses, 4);
        for (auto key = hotkey.crbegin(); key != hotkey.crend(); ++key)
            keys.release(*key);
        m_ports->hotkeys->removeAll();
        press();
        m_ports->x11->sync();
        QCOMPARE(presses, 4);
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

    void layout() {
        // The ANSI place that types "v", 128 for none.
        const QList<std::pair<QStringList, qsizetype>> cases{
            {{"gr"}, 128},
            {{"us,us", "-variant", ",dvorak"}, 9},
            {{"us", "-variant", ""}, 9},
        };
        for (const auto &[arguments, key] : cases) {
            QProcess process;
            process.setProcessEnvironment(m_desktop->environment());
            process.start("setxkbmap", arguments);
            QVERIFY(process.waitForFinished() && process.exitCode() == 0);
            const KeyLayout layout = m_ports->keyboard->currentLayout().value();
            QCOMPARE(std::find(layout.begin(), layout.end(), U'v') - layout.begin(), key);
        }
    }

private:
    struct Given {
        QStringList targets;
        QList<QByteArray> data;
        QStringList types;
    };

    /// Reads as another program, in a thread of its own, while this one answers.
    Given readElsewhere(const QStringList &targets) {
        auto reading = std::async(std::launch::async, [&targets, display = m_desktop->display()] {
            ClipboardReader clipboard(display, 15000);
            Given given{clipboard.targets().value_or(QStringList()), {}, {}};
            for (const QString &target : targets) {
                given.data.append(clipboard.data(target).value_or("(nothing)"));
                given.types.append(clipboard.type());
            }
            return given;
        });
        waitFor([&] { return reading.wait_for(0s) == std::future_status::ready; }, 60000);
        return reading.get();
    }

    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<Ports> m_ports;
};

QTEST_MAIN(TestX11)
#include "test_platform_x11.moc"
