#include "contract/PasteboardContract.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/qt/QtDispatch.h"
#include "platform/wayland/CompositorHotkeys.h"
#include "platform/wayland/DataControlClipboard.h"
#include "platform/wayland/ForeignToplevelWindow.h"
#include "platform/wayland/SwayConfiguration.h"
#include "platform/wayland/SwayHotkeys.h"
#include "platform/wayland/VirtualKeyboardKeys.h"
#include "platform/wayland/WaylandEventSource.h"
#include "stage/VirtualDesktop.h"
#include "support/Unprivileged.h"

#include <QElapsedTimer>
#include <QTemporaryFile>
#include <QTest>

#include <ctime>

using namespace std::chrono_literals;

namespace {

/// What an owner does with somebody who wants its data.
enum class Manner { Answers, NeverAnswers, ClosesEarly, Drips };

/// A program that copies.
class Owner {
public:
    explicit Owner(const PasteboardItem &contents, Manner manner = Manner::Answers)
        : m_thread([this, contents, manner](int interrupt) {
              return std::make_unique<Server>(interrupt, contents, manner, *this);
          }) {
        waitFor([this] { return m_owns.load(); });
    }
    bool owns() const { return m_owns; }
    int fetches() const { return m_fetches; }

private:
    class Server : public ServingThread::Connection {
    public:
        Server(int interrupt, const PasteboardItem &contents, Manner manner, Owner &owner)
            : m_wayland(interrupt), m_owner(owner) {
            m_control = DataControl::make(
                m_wayland, {.changed = [] {},
                            .lost = [this] { m_owner.m_owns = false; },
                            .fetched =
                                [this, manner](const QByteArray &data, Descriptor pipe) {
                                    ++m_owner.m_fetches;
                                    answer(manner, data, std::move(pipe));
                                }});
            if (!m_control)
                return;
            m_control->own(contents);
            m_owner.m_owns = m_wayland.roundTrip();
        }
        int prepare(std::vector<pollfd> &wanted) override {
            m_wayland.handleEvents();
            m_wayland.appendWanted(wanted);
            m_transfers.appendWanted(wanted);
            return m_kept.empty() ? -1 : 100;
        }
        void serve(const pollfd *) override {
            m_wayland.handleEvents();
            m_transfers.serve();
            for (const auto &[pipe, drips] : m_kept) {
                if (drips)
                    std::ignore = ::write(pipe.number(), "x", 1);
            }
        }

    private:
        void answer(Manner manner, const QByteArray &data, Descriptor pipe) {
            if (manner == Manner::Answers)
                m_transfers.begin(std::move(pipe), data);
            else if (manner != Manner::ClosesEarly)
                m_kept.emplace_back(std::move(pipe), manner == Manner::Drips);
        }

        WaylandConnection m_wayland;
        Owner &m_owner;
        std::unique_ptr<DataControl> m_control;
        PipeTransfers m_transfers;
        std::vector<std::pair<Descriptor, bool>> m_kept;
    };

    std::atomic<bool> m_owns = false;
    std::atomic<int> m_fetches = 0;
    ServingThread m_thread;
};

/// What a program that pastes gets of one flavour.
QString pasted(const QString &type) {
    QProcess program;
    program.start("wl-paste", {"--no-newline", "--type", type});
    waitFor([&] { return program.state() == QProcess::NotRunning; });
    return program.exitCode() == 0 ? QString::fromUtf8(program.readAllStandardOutput())
                                   : "(nothing)";
}

/// Programs on a compositor.
class Neighbours : public ClipboardNeighbours {
public:
    void copy(const QString &text, const QString &html) override {
        PasteboardItem contents{{"text/plain;charset=utf-8", {}, text.toUtf8()},
                                {"text/plain", {}, text.toUtf8()}};
        if (!html.isEmpty())
            contents.prepend({"text/html", {}, html.toUtf8()});
        m_owner = std::make_unique<Owner>(contents);
    }
    QStringList paste() override {
        return {pasted("text/plain;charset=utf-8"), pasted("text/html")};
    }

private:
    std::unique_ptr<Owner> m_owner;
};

std::shared_ptr<ThreadedPasteboard> makePasteboard() {
    return std::make_shared<ThreadedPasteboard>(
        std::make_shared<QtDispatch>(), [](int interrupt, ThreadedPasteboard::News news) {
            return std::make_unique<DataControlClipboard>(interrupt, std::move(news));
        });
}

std::optional<PasteboardWrite> write(Pasteboard &pasteboard, const QByteArray &text) {
    return PasteboardContract::write(pasteboard, text, {});
}

PasteboardItem textItem(const QByteArray &text) {
    return {{"text/plain;charset=utf-8", {}, text}};
}

} // namespace

class TestWayland : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanupTestCase() { m_desktop.reset(); }

    void contract_data() {
        QTest::addColumn<DesktopKind>("kind");
        QTest::addColumn<QString>("row");
        for (const auto &[name, kind] :
             {std::pair("sway: ", DesktopKind::Sway), std::pair("KWin: ", DesktopKind::KWin)}) {
            for (const QString &row : PasteboardContract::rows().keys())
                QTest::newRow(qPrintable(name + row)) << kind << row;
        }
    }

    void contract() {
        QFETCH(DesktopKind, kind);
        QFETCH(QString, row);
        QVERIFY(start(kind));
        Neighbours neighbours;
        QCOMPARE(PasteboardContract::rows()[row]([] { return makePasteboard(); }, neighbours),
                 QString());
    }

    void badOwners() {
        QVERIFY(start());
        const auto pasteboard = makePasteboard();
        const QByteArray large(2'000'000, 'x');
        for (const Manner manner : {Manner::NeverAnswers, Manner::Drips}) {
            const Owner owner({{"text/plain;charset=utf-8", {}, large}, {"text/html", {}, large}},
                              manner);
            QVERIFY(owner.owns());
            QElapsedTimer timer;
            timer.start();
            const ClipboardContents contents = PasteboardContract::read(*pasteboard);
            QVERIFY2(!contents.text && !contents.html, QByteArray::number(int(manner)));
            // Who drips without end has five seconds, others one.
            QVERIFY2(timer.elapsed() < (manner == Manner::Drips ? 9000 : 4000),
                     QByteArray::number(timer.elapsed()));
        }
        { // what is closed at once is empty
            const Owner owner(textItem(large), Manner::ClosesEarly);
            QCOMPARE(PasteboardContract::read(*pasteboard).text, "");
        }
        PasteboardItem thousand{{"text/" + QByteArray(3000, 'n'), {}, "long"},
                                {"TARGETS", {}, ""},
                                {"image/png", {}, "png"},
                                {"text/html", {}, "<b>"}};
        for (int i = 0; i < 1000; ++i)
            thousand.append({"text/plain;number=" + QByteArray::number(i), {}, "fine"});
        const Owner odd(thousand);
        const ClipboardContents contents = PasteboardContract::read(*pasteboard);
        QCOMPARE(contents.text, "fine");
        QCOMPARE(contents.html, "<b>");
        QCOMPARE(contents.items->constFirst().size(), 24);
        QCOMPARE(odd.fetches(), 24);
    }

    void hungOwnerHoldsNobodyUp() {
        QVERIFY(start());
        const Owner owner(textItem("x"), Manner::NeverAnswers);
        auto pasteboard = makePasteboard();
        pasteboard->read([](const ClipboardContents &) {});
        QVERIFY(waitFor([&] { return owner.fetches() > 0; })); // it is asked, and waits
        QElapsedTimer timer;
        timer.start();
        pasteboard->finish({});
        pasteboard.reset();
        QVERIFY2(timer.elapsed() < 500, QByteArray::number(timer.elapsed()));
    }

    void snapshotComesBackByteForByte() {
        QVERIFY(start());
        const auto pasteboard = makePasteboard();
        const PasteboardItem textLike{{"text/html", {}, QByteArray("<b>\0\xff</b>", 9)},
                                      {"TEXT", {}, "caf\xe9"},
                                      {"text/uri-list", {}, QByteArray(10'000'000, 'u')}};
        QList<PasteboardItem> kept;
        {
            const Owner owner(textLike + PasteboardItem{{"image/png", {}, "png"},
                                                        {"application/x-private", {}, "private"}});
            kept = PasteboardContract::read(*pasteboard).items.value();
            QCOMPARE(kept, QList<PasteboardItem>{textLike});
        }
        QVERIFY(PasteboardContract::restore(*pasteboard, kept));
        QCOMPARE(PasteboardContract::read(*makePasteboard()).items.value(),
                 QList<PasteboardItem>{textLike});
        QTRY_VERIFY(!pasteboard->use().transferRunning);
    }

    void readerThatGoesEarly() {
        QVERIFY(start());
        const auto pasteboard = makePasteboard();
        write(*pasteboard, QByteArray(10'000'000, 'x'));
        QProcess program;
        program.start("sh", {"-c", "wl-paste --no-newline | head -c 10"});
        QVERIFY(waitFor([&] { return program.state() == QProcess::NotRunning; }));
        QCOMPARE(program.readAllStandardOutput(), QByteArray("xxxxxxxxxx"));
        QTRY_VERIFY(pasteboard->use().latest && !pasteboard->use().transferRunning);
        write(*pasteboard, "still here");
        QCOMPARE(pasted("text/plain"), "still here");
    }

    void managerThatTakesOverChangesNothing() {
        QVERIFY(start());
        const auto pasteboard = makePasteboard();
        const auto mine = write(*pasteboard, "mine");
        const Owner manager(textItem("mine"));
        QTRY_VERIFY(!pasteboard->use().isOurs);
        QCOMPARE(PasteboardContract::read(*pasteboard).changeCount, mine->changeCount);
        QVERIFY(PasteboardContract::restore(*pasteboard, {textItem("back")}, mine->changeCount));
        QCOMPARE(pasted("text/plain;charset=utf-8"), "back");
    }

    void compositorThatDies() {
        QVERIFY(start());
        const auto pasteboard = makePasteboard();
        QVERIFY(write(*pasteboard, "ours"));
        const auto wayland = connectToWayland();
        VirtualKeyboardKeys keys(wayland, std::make_shared<QtDispatch>());
        QCOMPARE(keys.access().state, PasteAccess::State::Ready);
        SwayHotkeys hotkeys;
        m_desktop.reset();
        QTRY_VERIFY(!pasteboard->unavailableBecause().isEmpty());
        QVERIFY2(pasteboard->unavailableBecause().startsWith("the connection to the compositor"),
                 qPrintable(pasteboard->unavailableBecause()));
        QVERIFY(!pasteboard->use().isOurs);
        QVERIFY(!PasteboardContract::read(*pasteboard).items);
        QVERIFY(!write(*pasteboard, "in vain"));
        QTRY_COMPARE(keys.access().state, PasteAccess::State::Impossible);
        std::optional<bool> pressed;
        keys.press({}, [&](bool was) { pressed = was; });
        QCOMPARE(pressed, false);
        QTRY_COMPARE(hotkeys.unavailableBecause(), "sway does not answer");
        const std::clock_t before = std::clock();
        QTest::qWait(500);
        QVERIFY(std::clock() - before < CLOCKS_PER_SEC / 10); // nothing spins
    }

    void keysPasteIntoTheTerminalInFront() {
        QVERIFY(start());
        const auto wayland = connectToWayland();
        VirtualKeyboardKeys keys(wayland, std::make_shared<QtDispatch>());
        ForeignToplevelWindow front(wayland);
        const auto inFront = [&] {
            auto found = FrontWindow::Kind::Application;
            front.find([&](FrontWindow::Kind kind) { found = kind; });
            return found;
        };
        QCOMPARE(inFront(), FrontWindow::Kind::Unknown);
        QTemporaryFile typed;
        QVERIFY(typed.open());
        QProcess terminal;
        terminal.start("foot", QStringList{"sh", "-c", "cat > " + typed.fileName()});
        QTRY_COMPARE(inFront(), FrontWindow::Kind::Terminal);
        const auto pasteboard = makePasteboard();
        write(*pasteboard, "a line\n");
        std::optional<bool> pressed;
        keys.press({9, true}, [&](bool was) { pressed = was; });
        QTRY_COMPARE(pressed, true);
        QTRY_COMPARE(QString::fromUtf8(contentsOf(typed.fileName())), "a line\n");
        keys.press({9, true}, [](bool) {});
        QTRY_COMPARE(QString::fromUtf8(contentsOf(typed.fileName())), "a line\na line\n");
        terminal.kill();
        terminal.waitForFinished();
        QTRY_COMPARE(inFront(), FrontWindow::Kind::Unknown);
    }

    void swayHotkeys() {
        QVERIFY(start());
        const auto wayland = connectToWayland();
        VirtualKeyboardKeys keys(wayland, std::make_shared<QtDispatch>());
        auto hotkeys = std::make_unique<SwayHotkeys>();
        QCOMPARE(hotkeys->unavailableBecause(), QString());
        int presses = 0;
        int releases = 0;
        std::optional<QList<Hotkeys::Refusal>> refused;
        const auto bind = [&](const QList<KeyCombo> &all) {
            refused.reset();
            hotkeys->bind(
                all, [&] { ++presses; }, [&] { ++releases; },
                [&](const QList<Hotkeys::Refusal> &refusals) { refused = refusals; });
            return waitFor([&] { return refused.has_value(); });
        };
        const auto press = [&] {
            std::optional<bool> done;
            keys.press({}, [&](bool was) { done = was; });
            waitFor([&] { return done.has_value(); });
        };
        const KeyCombo ctrlV{9, HotkeyFormat::controlKey};
        const KeyCombo taken{36, HotkeyFormat::cmdKey}; // as the configuration has it
        QVERIFY(bind({{0x7f, HotkeyFormat::controlKey}, ctrlV, taken}));
        QCOMPARE(refused->size(), 2);
        QCOMPARE(refused->at(0).reason, "is on no key of this keyboard");
        QCOMPARE(refused->at(1).reason, "is taken by the configuration of sway");
        QCOMPARE(refused->at(1).combo, taken);
        press();
        QTRY_COMPARE(presses, 1);
        QTRY_COMPARE(releases, 1);
        QCOMPARE(QProcess::execute("swaymsg", {"-q", "reload"}), 0);
        QVERIFY(waitFor([&] {
            press();
            return presses >= 2;
        }));
        // A connection of its own hears nothing of the presses before it, which may still be told.
        hotkeys = std::make_unique<SwayHotkeys>();
        QVERIFY(bind({ctrlV}));
        const int before = presses;
        hotkeys->unbind();
        QVERIFY(bind({{8, HotkeyFormat::controlKey}})); // what was told before is done by now
        press();
        bind({ctrlV});
        QCOMPARE(presses, before);
        press();
        QTRY_COMPARE(presses, before + 1);
        // And at its end nothing stays behind.
        hotkeys = std::make_unique<SwayHotkeys>();
        QVERIFY(bind({{8, HotkeyFormat::controlKey}}));
        press();
        QVERIFY(bind({}));
        QCOMPARE(presses, before + 1);
    }

    void swayConfiguration_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("binds");
        const auto row = [](const char *text, bool binds) {
            QTest::newRow(QByteArray(text).replace('\n', " / ").constData())
                << QString::fromUtf8(text) << binds;
        };
        row("", false);
        row("bindsym Ctrl+Alt+Mod4+v exec x", true);
        row("  bindsym --no-warn --to-code control+mod1+SUPER+V exec x", true);
        row("bindcode Mod4+Mod1+Ctrl+55 exec x", true);
        row("bindsym Ctrl+Alt+v exec x", false);
        row("bindsym Ctrl+Alt+Mod4+Shift+v exec x", false);
        row("bindsym Ctrl+Alt+Mod4+Mod5+v exec x", false);
        row("bindsym Ctrl+Alt+Mod4+v+c exec x", false);
        row("#bindsym Ctrl+Alt+Mod4+v exec x", false);
        row("set $mod Mod4\nset $all Ctrl+Alt+$mod\nbindsym $all+v exec x", true);
        row("bindsym \\\n  Ctrl+Alt+Mod4+v exec x", true);
        row("mode \"other\" {\n  bindsym Ctrl+Alt+Mod4+v exec x\n}", false);
        row("mode \"other\" {\n}\nbindsym Ctrl+Alt+Mod4+v exec x", true);
        row("bindsym {\n  Ctrl+Alt+Mod4+v exec x\n}", true);
    }

    void swayConfiguration() {
        QFETCH(QString, text);
        QFETCH(bool, binds);
        QCOMPARE(SwayConfiguration(text).binds({9, 6400}), binds);
    }

    void session() {
        QVERIFY(start());
        qputenv("DISPLAY", ":no-such");
        const Platform platform = makeLinuxPlatform();
        QCOMPARE(platform.choices,
                 (QStringList{"hotkeys: sway IPC", "paste keys: virtual keyboard",
                              "front window: foreign toplevel", "clipboard: data-control"}));
        QVERIFY(!platform.hotkeys->desktopsChoice());
        qunsetenv("SWAYSOCK");
        qputenv("XDG_CURRENT_DESKTOP", "labwc:wlroots");
        const Platform other = makeLinuxPlatform();
        QCOMPARE(other.choices[0],
                 "hotkeys: unavailable; not sway IPC (SWAYSOCK is not set); not KGlobalAccel "
                 "(the desktop is not Plasma); not GlobalShortcuts portal "
                 "(the desktop has no portal: org.freedesktop.portal.Desktop is not on the bus); "
                 "not GNOME's custom shortcuts (the desktop is not GNOME)");
        const auto choice = other.hotkeys->desktopsChoice();
        QCOMPARE(choice->text, "No program can choose a hotkey here. Put this line into the "
                               "configuration of labwc:");
        QCOMPARE(choice->line,
                 "<keybind key=\"C-A-W-v\" onRelease=\"yes\"><action name=\"Execute\" "
                 "command=\"brindle paste\"/>"
                 "</keybind>");
        qputenv("XDG_CURRENT_DESKTOP", "unheard-of");
        QCOMPARE(other.hotkeys->desktopsChoice()->text,
                 "No program can choose a hotkey here. Let a keyboard shortcut of the desktop run "
                 "this command:");
        QCOMPARE(other.hotkeys->desktopsChoice()->line, "brindle paste");
    }

private:
    /// Leads this process to such a desktop, the same as before where there is one.
    bool start(DesktopKind kind = DesktopKind::Sway) {
        if (!m_desktop || m_desktop->kind() != kind)
            m_desktop = std::make_unique<VirtualDesktop>(DesktopOptions{.kind = kind});
        m_desktop->join();
        if (!m_desktop->problem().isEmpty())
            qWarning("%s", qPrintable(m_desktop->problem()));
        return m_desktop->problem().isEmpty();
    }

    static QByteArray contentsOf(const QString &path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<VirtualDesktop> m_desktop;
};

UNPRIVILEGED_TEST_MAIN(TestWayland)
#include "test_platform_wayland.moc"
