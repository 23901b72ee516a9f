#include "contract/HotkeysContract.h"
#include "contract/PasteboardContract.h"
#include "contract/XClipboardNeighbours.h"
#include "platform/qt/QtDispatch.h"
#include "platform/x11/X11Clipboard.h"
#include "platform/x11/X11EventSource.h"
#include "platform/x11/X11Hotkeys.h"
#include "platform/x11/X11PasteKeys.h"
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
    std::shared_ptr<QtDispatch> dispatch = std::make_shared<QtDispatch>();
    std::shared_ptr<X11Connection> x11 = connectToX11();
    std::shared_ptr<ThreadedPasteboard> pasteboard = std::make_shared<ThreadedPasteboard>(
        dispatch, [](int interrupt, ThreadedPasteboard::News news) {
            return std::make_unique<X11Clipboard>(interrupt, std::move(news));
        });
    std::shared_ptr<X11Hotkeys> hotkeys = std::make_shared<X11Hotkeys>(x11);
    X11PasteKeys keys{x11, hotkeys, dispatch};

    ClipboardContents read() const { return PasteboardContract::read(*pasteboard); }
    auto write(const QByteArray &text, const QByteArray &html = {}) const {
        return PasteboardContract::write(*pasteboard, text, html);
    }
    /// Whether the combination could be had.
    bool bind(const KeyCombo &combo, std::function<void()> pressed) const {
        QList<Hotkeys::Refusal> refused;
        hotkeys->bind({combo}, std::move(pressed), nullptr,
                      [&](const QList<Hotkeys::Refusal> &refusals) { refused = refusals; });
        return refused.isEmpty();
    }
};

constexpr KeyCombo ctrlAltSuperV{9, 6400};

/// The hands on the keyboard of an X display, and the programs that take hotkeys on it.
class HotkeyUsers : public HotkeyNeighbours {
public:
    explicit HotkeyUsers(const VirtualDesktop &desktop) : m_keys(desktop.keyboardDisplay()) {}
    ~HotkeyUsers() override {
        m_other.hotkeys->unbind();
        m_other.x11->sync();
    }

    void press(const KeyCombo &combo, bool isHeld) override {
        QList<int> keys{keyCode(KEY_LEFTCTRL), keyCode(KEY_LEFTALT), keyCode(KEY_LEFTMETA)};
        keys.append(keyCode(combo == ctrlAltSuperV ? KEY_V : KEY_C));
        for (const int key : keys)
            m_keys.press(key);
        if (isHeld)
            QTest::qWait(1500); // long enough to repeat many times
        for (auto key = keys.crbegin(); key != keys.crend(); ++key)
            m_keys.release(*key);
    }
    bool take(const KeyCombo &combo) override {
        return m_other.bind(combo, [] {});
    }

private:
    VirtualKeyboard m_keys;
    Ports m_other;
};

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
        m_desktop->join();
        m_ports = std::make_unique<Ports>();
        QVERIFY(m_ports->x11);
    }

    void cleanupTestCase() {
        m_ports.reset();
        m_desktop.reset();
    }

    void nobodyOwnsTheClipboard() { // yet
        const ClipboardContents contents = m_ports->read();
        QCOMPARE(contents.text, std::nullopt);
        QVERIFY(!contents.items);
    }

    void contract_data() {
        QTest::addColumn<QString>("row");
        for (const QString &row : PasteboardContract::rows().keys())
            QTest::newRow(qPrintable(row)) << row;
    }

    void contract() {
        QFETCH(QString, row);
        XClipboardNeighbours neighbours(*m_desktop);
        QCOMPARE(PasteboardContract::rows()[row]([] { return Ports().pasteboard; }, neighbours),
                 QString());
    }

    void hotkeysContract_data() {
        QTest::addColumn<QString>("row");
        for (const QString &row : HotkeysContract::rows().keys())
            QTest::newRow(qPrintable(row)) << row;
    }

    void hotkeysContract() {
        QFETCH(QString, row);
        HotkeyUsers users(*m_desktop);
        const QString failure = HotkeysContract::rows()[row](*m_ports->hotkeys, users);
        m_ports->x11->sync(); // or the next finds its hotkey taken
        QCOMPARE(failure, QString());
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
            const ClipboardContents contents = m_ports->read();
            const bool isHtml = flavour.name == "text/html";
            QCOMPARE((isHtml ? contents.html : contents.text).value_or("(nothing)"), text);
            QCOMPARE(isHtml ? contents.text : contents.html, std::nullopt);
        }
    }

    void eachFlavourIsAskedForOnce() {
        const ClipboardOwner owner(*m_desktop, {{"text/plain;charset=utf-8", "a"},
                                                {"UTF8_STRING", "a"},
                                                {"text/html", "<b>a</b>"},
                                                {"image/png", "png"}});
        QVERIFY(owner.ownsClipboard());
        m_ports->read();
        QStringList asked;
        for (const QJsonObject &request : owner.events("request"))
            asked.append(request["target"].toString());
        asked.sort();
        QCOMPARE(asked,
                 QStringList({"TARGETS", "UTF8_STRING", "text/html", "text/plain;charset=utf-8"}));
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
            const ClipboardContents contents = m_ports->read();
            QVERIFY2(!contents.text && !contents.html, qPrintable(behaviour[0]));
            // Who drips without end has five seconds, others one.
            QVERIFY2(timer.elapsed() < (behaviour.size() > 1 ? 9000 : 4000),
                     qPrintable(behaviour[0] + QString::number(timer.elapsed())));
            // And the next owner is read as ever.
            const ClipboardOwner good(*m_desktop, {{"UTF8_STRING", "fine"}});
            QTRY_COMPARE(m_ports->read().text, "fine");
        }
        // One that is silent about what it does not offer is read nevertheless, and at once.
        const ClipboardOwner odd(*m_desktop, {{"text/plain;charset=utf-8", "odd"}},
                                 {"--never-refuse"});
        QTRY_COMPARE(m_ports->read().text, "odd");
    }

    void hungOwnerHoldsNobodyUp() {
        const ClipboardOwner owner(*m_desktop, {{"UTF8_STRING", "x"}}, {"--never-answer"});
        QVERIFY(owner.ownsClipboard());
        auto ports = std::make_unique<Ports>();
        ports->pasteboard->read([](const ClipboardContents &) {});
        QTest::qWait(50); // it is asked by now, and waits
        QElapsedTimer timer;
        timer.start();
        ports->pasteboard->finish({});
        ports.reset();
        QVERIFY2(timer.elapsed() < 500, qPrintable(QString::number(timer.elapsed())));
    }

    void snapshotComesBackByteForByte() {
        const QByteArray html("<b>\0\xff</b>", 9);
        QList<PasteboardItem> kept;
        {
            const ClipboardOwner owner(*m_desktop, {{"text/html", html},
                                                    {"TEXT", "caf\xe9", "STRING"},
                                                    {"UTF8_STRING", "café"},
                                                    {"application/x-private", "private"},
                                                    {"image/png", "png"},
                                                    {"text/uri-list", "file:///a\r\n"}});
            QVERIFY(owner.ownsClipboard());
            kept = m_ports->read().items.value();
        }
        QVERIFY(PasteboardContract::restore(*m_ports->pasteboard, kept));
        const auto given = readElsewhere({"text/html", "TEXT", "UTF8_STRING", "text/uri-list"});
        QCOMPARE(given.data, (QList<QByteArray>{html, "caf\xe9", "café", "file:///a\r\n"}));
        QCOMPARE(given.types, (QStringList{"text/html", "STRING", "UTF8_STRING", "text/uri-list"}));
        QVERIFY(!given.targets.contains("image/png"));
    }

    void whatWeWriteIsReadElsewhere() {
        const QByteArray large(1'500'000, 'h');
        m_ports->write("é 🐞", large);
        QVERIFY(!readElsewhere({}).targets.contains("STRING")); // it has no 🐞
        QVERIFY(!m_ports->pasteboard->use().latest); // to ask what there is is to fetch nothing
        const auto given = readElsewhere({"UTF8_STRING", "text/plain;charset=utf-8", "text/html"});
        QCOMPARE(given.data, (QList<QByteArray>{"é 🐞", "é 🐞", large}));
        QTRY_VERIFY(!m_ports->pasteboard->use().transferRunning);
    }

    void managerThatTakesOverChangesNothing() {
        const auto mine = m_ports->write("mine");
        const ClipboardOwner manager(*m_desktop, {{"UTF8_STRING", "mine"}});
        QVERIFY(manager.ownsClipboard());
        QTRY_VERIFY(!m_ports->pasteboard->use().isOurs);
        QCOMPARE(m_ports->read().changeCount, mine->changeCount);
        QVERIFY(PasteboardContract::restore(*m_ports->pasteboard, {{{"UTF8_STRING", {}, "back"}}},
                                            mine->changeCount));
        QCOMPARE(readElsewhere({"UTF8_STRING"}).data, QList<QByteArray>{"back"});
    }

    void ownWindowPastesAtOnce() {
        // The toolkit blocks the main thread until whoever owns the clipboard has answered.
        m_ports->write("ours");
        m_ports->x11->sync();
        QElapsedTimer timer;
        timer.start();
        const QString pasted = readBlocking();
        QCOMPARE(pasted, "ours");
        QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
    }

    void hotkeyFiresWithAnyLock() {
        int presses = 0;
        QVERIFY(m_ports->bind(ctrlAltSuperV, [&] { ++presses; }));
        VirtualKeyboard keys(m_desktop->keyboardDisplay());
        const auto press = [&] {
            keys.chord({keyCode(KEY_LEFTCTRL), keyCode(KEY_LEFTALT), keyCode(KEY_LEFTMETA),
                        keyCode(KEY_V)});
        };
        press();
        QVERIFY(waitFor([&] { return presses == 1; }));
        for (int times = 0; times < 2; ++times) { // on and off
            keys.tap(keyCode(KEY_CAPSLOCK));
            keys.tap(keyCode(KEY_NUMLOCK));
            press();
            QVERIFY(waitFor([&] { return presses == 2 + times; }));
        }
        m_ports->hotkeys->unbind();
        m_ports->x11->sync();
    }

    void takenHotkeyIsRefusedAndLeavesNothingGrabbed() {
        const Ports other;
        QVERIFY(other.bind(ctrlAltSuperV, [] {}));
        QVERIFY(!m_ports->bind(ctrlAltSuperV, [] {}));
        other.hotkeys->unbind();
        other.x11->sync();
        QVERIFY(m_ports->bind(ctrlAltSuperV, [] {}));
        m_ports->hotkeys->unbind();
        QVERIFY(!m_ports->bind({0x7f, 256}, [] {}));  // no such key
        QVERIFY(!m_ports->bind({9, 0x10000}, [] {})); // no modifier we know
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
            const KeyLayout layout = m_ports->keys.layout().value();
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

    /// As the toolkit does when it pastes: asks and waits, without an event loop.
    QString readBlocking() const {
        return QString::fromUtf8(
            ClipboardReader(m_desktop->display(), 15000).data("UTF8_STRING").value_or("(nothing)"));
    }

    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<Ports> m_ports;
};

QTEST_MAIN(TestX11)
#include "test_platform_x11.moc"
