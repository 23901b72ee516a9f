#include "clipboard/Clipboard.h"
#include "clipboard/ClipboardRestorer.h"
#include "clipboard/ClipboardSnapshot.h"
#include "clipboard/Pasting.h"
#include "fakes/FakePlatform.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString italicFix = u"ABC-1 \uE000Fix\uE001"_s;

struct Scene : FakePlatform {
    /// A paste in which the keystroke is just over and the restore due.
    void paste(const QString &original) {
        pasteboard->copyText(original);
        arm();
        write();
        ClipboardRestorer::markDelivering();
        ClipboardRestorer::commit(pasteboard->count, dispatch->now());
    }

    void arm() {
        pasteboard->read([](const ClipboardContents &read) { ClipboardRestorer::arm(read); });
    }

    void write(const QString &link = u"link"_s) {
        pasteboard->write({{PasteboardType::String, link.toUtf8()}}, {}, [](const auto &) {});
    }

    void targetFetches(bool transferRunning = false) {
        pasteboard->beUsed({true, dispatch->now(), transferRunning});
    }

    QString text() { return pasteboard->text(PasteboardType::String).value_or("(none)"); }
};

} // namespace

class TestClipboard : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void link() {
        using Format = PasteFormat;
        const QList<std::tuple<QString, QString, Format, QString, QString>> cases{
            {u"A & B <c> \"q\" 'a'"_s, u"https://x/?a=1&b=\"2\""_s, Format::RichLink,
             u"A & B <c> \"q\" 'a' (https://x/?a=1&b=\"2\")"_s,
             u"<a href=\"https://x/?a=1&amp;b=&quot;2&quot;\">A &amp; B &lt;c&gt; "
             u"&quot;q&quot; &#39;a&#39;</a>"_s},
            {italicFix, u"u"_s, Format::RichLink, u"ABC-1 Fix (u)"_s,
             u"<a href=\"u\">ABC-1 <i>Fix</i></a>"_s},
            {italicFix, u"u"_s, Format::Markdown, u"[ABC-1 *Fix*](u)"_s, {}},
            {u"\uE002[D]\uE003"_s, u"u)"_s, Format::Markdown, u"[**[D]**](u))"_s, {}},
            {u"%1 %2"_s, u"%1"_s, Format::PlainText, u"%1 %2 (%1)"_s, {}},
            {italicFix, u"u"_s, Format::UrlOnly, u"u"_s, {}},
        };
        for (const auto &[text, url, format, plain, html] : cases) {
            FakePlatform platform;
            FakePasteboard &pasteboard = *platform.pasteboard;
            QCOMPARE(Clipboard::write(text, url, format, {}, [](const auto &) {}), plain);
            QCOMPARE(pasteboard.text(PasteboardType::String), plain);
            QCOMPARE(pasteboard.text(PasteboardType::Html).value_or(QString()), html);
            QList<QByteArray> names;
            for (const PasteboardRepresentation &one : pasteboard.contents->constFirst())
                names.append(one.name);
            QCOMPARE(names, html.isEmpty() ? QList<QByteArray>{"string"}
                                           : QList<QByteArray>({"html", "rtf", "string"}));
            QCOMPARE(pasteboard.count, 1);
        }
    }

    void snapshotKeepsEveryItemByteForByte() {
        FakePlatform platform;
        FakePasteboard &pasteboard = *platform.pasteboard;
        const PasteboardItem rich{{"html", "x", QByteArray("<b>\0", 4)}, {"rtf", "y", "{\\rtf1}"}};
        const PasteboardItem file{{"file", "", "file:///a"}, {"string", "", "a"}};
        const ClipboardContents contents{0, {}, {}, {{rich, {}, file}}};
        const auto snapshot = ClipboardSnapshot::capture(contents);
        QCOMPARE(snapshot->items.size(), 3);
        bool restored = false;
        snapshot->restore(pasteboard, 0, [&](bool is) { restored = is; });
        QVERIFY(restored);
        QCOMPARE(*pasteboard.contents, (QList<PasteboardItem>{rich, file}));
        snapshot->restore(pasteboard, 0, [&](bool is) { restored = is; }); // changed since
        QVERIFY(!restored);
        QVERIFY(!ClipboardSnapshot::capture({}));
    }

    void restore() {
        struct Case {
            const char *name;
            std::function<void(Scene &, int time)> others; ///< at `time` ms after the keystroke
            int endsAt;                                    ///< ms
            QString text;
            QString logged;
        };
        const QString back = u"enrich: original clipboard restored"_s;
        const QString kept = u"enrich: clipboard changed since paste — skipping restore"_s;
        const auto fetchesAt = [](int fetch) {
            return [fetch](Scene &scene, int time) {
                if (time == fetch)
                    scene.targetFetches();
            };
        };
        const auto transfersUntil = [](int end) {
            return [end](Scene &scene, int time) {
                if (time == 10 || time == end)
                    scene.targetFetches(time != end);
            };
        };
        const auto copiesAt = [](int copy) {
            return [copy](Scene &scene, int time) {
                if (time == copy)
                    scene.pasteboard->copyText(u"foreign"_s);
            };
        };
        const auto managerAt = [](int taken) {
            return [taken](Scene &scene, int time) {
                if (time == taken) // the same text, so the count stays
                    scene.pasteboard->beUsed({false, {}, false});
            };
        };
        const QList<Case> cases{
            {"fetched", fetchesAt(10), 500, u"original"_s, back},
            {"never fetched", [](Scene &, int) {}, 2000, u"original"_s, back},
            {"fetched late", fetchesAt(1200), 1200, u"original"_s, back},
            {"long transfer", transfersUntil(900), 900, u"original"_s, back},
            {"endless transfer", transfersUntil(9000), 2000, u"original"_s, back},
            {"copied in the window", copiesAt(300), 500, u"foreign"_s, kept},
            {"copied in the wait", copiesAt(700), 700, u"foreign"_s, kept},
            {"manager in the window", managerAt(100), 500, u"original"_s, back},
            {"manager in the wait", managerAt(800), 800, u"original"_s, back},
        };
        for (const auto &[name, others, endsAt, text, logged] : cases) {
            Scene scene;
            scene.pasteboard->beUsed({true, scene.dispatch->now() - 20ms, false});
            scene.paste(u"original"_s);
            scene.takeLog();
            int time = 0;
            for (; time <= 2500 && ClipboardRestorer::isDelivering(); time += 10) {
                others(scene, time);
                if (ClipboardRestorer::isDelivering())
                    scene.dispatch->advance(10ms);
            }
            QVERIFY2(time >= endsAt && time <= endsAt + 10,
                     qPrintable(
                         u"%1: %2 instead of %3"_s.arg(QLatin1String(name)).arg(time).arg(endsAt)));
            QCOMPARE(name + scene.text(), name + text);
            QCOMPARE(name + scene.takeLog().join(u'|'), name + logged);
        }
    }

    void armingAgainKeepsTheOlderSnapshotAndCallsTheRestoreOff() {
        Scene scene;
        scene.paste(u"user's"_s);
        scene.arm();
        scene.write(u"link 2"_s);
        scene.dispatch->advance(3s);
        QCOMPARE(scene.text(), u"link 2"_s);
        ClipboardRestorer::commit(scene.pasteboard->count, scene.dispatch->now());
        scene.dispatch->advance(3s);
        QCOMPARE(scene.text(), u"user's"_s);
    }

    void abandoningDropsTheSnapshotAndTheRestore() {
        Scene scene;
        scene.paste(u"old"_s);
        ClipboardRestorer::abandon();
        QVERIFY(!ClipboardRestorer::isDelivering());
        scene.paste(u"new"_s);
        scene.dispatch->advance(3s);
        QCOMPARE(scene.text(), u"new"_s);
    }

    void theEndGivesBackWhatIsArmed() {
        Scene scene;
        scene.paste(u"user's"_s);
        ClipboardRestorer::finishNow();
        QCOMPARE(scene.pasteboard->finished->value(0), (PasteboardItem{{"string", {}, "user's"}}));
        scene.dispatch->advance(3s);
        QCOMPARE(scene.text(), u"link"_s); // no restore is left to come
        ClipboardRestorer::abandon();
        ClipboardRestorer::finishNow();
        QVERIFY(scene.pasteboard->finished->isEmpty());
    }

    void keystroke() {
        using State = PasteAccess::State;
        using Kind = FrontWindow::Kind;
        struct Case {
            State access;
            bool canPost;
            Kind front;
            ChildResult program;
            QString error;
            QString pressed; ///< empty: another program was to press
        };
        const QList<Case> cases{
            {State::Ready, true, Kind::Application, {}, {}, u"paste 47"_s},
            {State::Ready, true, Kind::Unknown, {}, {}, u"paste 47"_s},
            {State::Ready, true, Kind::Terminal, {}, {}, u"paste Shift+47"_s},
            {State::NeedsConsent, true, Kind::Application, {}, {}, {}},
            {State::Ready, false, Kind::Application, {}, {}, {}},
            {State::Impossible,
             true,
             Kind::Application,
             {u"No"_s, 0, {}},
             u"Failed to launch keypresser: No"_s,
             {}},
            {State::Impossible,
             true,
             Kind::Application,
             {{}, 1, " not allowed\n"},
             u"not allowed"_s,
             {}},
            {State::Impossible,
             true,
             Kind::Application,
             {{}, 3, "\n"},
             u"keypresser exited 3"_s,
             {}},
            {State::Impossible,
             true,
             Kind::Application,
             {{}, 4, "\xff\xfe"},
             u"keypresser exited 4"_s,
             {}},
        };
        for (const auto &[access, canPost, front, program, error, pressed] : cases) {
            FakePlatform platform;
            platform.pasteKeys->granted.state = access;
            platform.pasteKeys->canPost = canPost;
            platform.frontWindow->kind = front;
            platform.childProcess->result = program;
            const auto start = platform.dispatch->now();
            std::optional<Pasting::Outcome> outcome;
            Pasting::simulateCommandV(47, start, [&](const auto &got) { outcome = got; });
            platform.dispatch->advance(49ms);
            QVERIFY(platform.pasteKeys->events.size() <= 1); // no key before the pause is over
            platform.dispatch->advance(1ms);
            QCOMPARE(outcome->ok, error.isEmpty());
            QCOMPARE(outcome->error, error);
            QCOMPARE(platform.pasteKeys->events, pressed.isEmpty()
                                                     ? QStringList(u"settle"_s)
                                                     : QStringList({"settle", pressed}));
            QCOMPARE(platform.childProcess->runs, pressed.isEmpty()
                                                      ? QStringList(u"/usr/bin/keypresser ctrl+v"_s)
                                                      : QStringList());
            QCOMPARE(outcome->at - start, access == State::Ready ? 50ms : 0ms);
        }
    }

    void keyOfTheLetter() {
        FakePlatform platform;
        QCOMPARE(Pasting::resolveVKeyCode(), 9); // no layout can be read
        KeyLayout layout{};
        platform.pasteKeys->keys = layout;
        QCOMPARE(Pasting::resolveVKeyCode(), 9); // no key types it
        layout[40] = layout[3] = U'V';
        layout[47] = layout[110] = U'v';
        platform.pasteKeys->keys = layout;
        QCOMPARE(Pasting::resolveVKeyCode(), 47); // the lowest
    }
};

QTEST_GUILESS_MAIN(TestClipboard)
#include "test_clipboard.moc"
