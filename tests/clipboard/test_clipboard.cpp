#include "clipboard/Clipboard.h"
#include "clipboard/ClipboardRestorer.h"
#include "clipboard/ClipboardSnapshot.h"
#include "clipboard/Pasting.h"
#include "fakes/FakePlatform.h"

#include <QTest>

using namespace std::chrono_literals;

namespace {

const QString italicFix = u"ABC-1 \uE000Fix\uE001"_qs;

struct Scene : FakePlatform {
    /// A paste in which the keystroke is just over and the restore due.
    void paste(const QString &original) {
        pasteboard->copyText(original);
        ClipboardRestorer::arm();
        pasteboard->copyText(u"link"_qs);
        ClipboardRestorer::markDelivering();
        ClipboardRestorer::commit(pasteboard->count, dispatch->now());
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
            {u"A & B <c> \"q\" 'a'"_qs, u"https://x/?a=1&b=\"2\""_qs, Format::RichLink,
             u"A & B <c> \"q\" 'a' (https://x/?a=1&b=\"2\")"_qs,
             u"<a href=\"https://x/?a=1&amp;b=&quot;2&quot;\">A &amp; B &lt;c&gt; "
             u"&quot;q&quot; &#39;a&#39;</a>"_qs},
            {italicFix, u"u"_qs, Format::RichLink, u"ABC-1 Fix (u)"_qs,
             u"<a href=\"u\">ABC-1 <i>Fix</i></a>"_qs},
            {italicFix, u"u"_qs, Format::Markdown, u"[ABC-1 *Fix*](u)"_qs, {}},
            {u"\uE002[D]\uE003"_qs, u"u)"_qs, Format::Markdown, u"[**[D]**](u))"_qs, {}},
            {u"%1 %2"_qs, u"%1"_qs, Format::PlainText, u"%1 %2 (%1)"_qs, {}},
            {italicFix, u"u"_qs, Format::UrlOnly, u"u"_qs, {}},
        };
        for (const auto &[text, url, format, plain, html] : cases) {
            FakePlatform platform;
            FakePasteboard &pasteboard = *platform.pasteboard;
            QCOMPARE(Clipboard::write(text, url, format), plain);
            QCOMPARE(pasteboard.text(PasteboardType::String), plain);
            QCOMPARE(pasteboard.text(PasteboardType::Html).value_or(QString()), html);
            QCOMPARE(pasteboard.contents->constFirst().size(), html.isEmpty() ? 1 : 3);
            QCOMPARE(pasteboard.count, 1);
        }
    }

    void snapshotKeepsTextTypesOfEveryItemByteForByte() {
        FakePlatform platform;
        FakePasteboard &pasteboard = *platform.pasteboard;
        const PasteboardItem rich{{"html", "x", QByteArray("<b>\0", 4)}, {"rtf", "y", "{\\rtf1}"}};
        const PasteboardItem file{{"file", "", "file:///a"}, {"string", "", "a"}};
        const PasteboardItem image{{"image", "", "png"}};
        pasteboard.copy({rich, image, image + file});
        ClipboardSnapshot::capture(pasteboard)->restore(pasteboard);
        QCOMPARE(*pasteboard.contents, (QList<PasteboardItem>{rich, file}));

        pasteboard.copy({image}); // nothing to give back
        const auto snapshot = ClipboardSnapshot::capture(pasteboard);
        pasteboard.copyText(u"link"_qs);
        snapshot->restore(pasteboard);
        QCOMPARE(pasteboard.text(PasteboardType::String), u"link"_qs);
        pasteboard.contents.reset();
        QVERIFY(!ClipboardSnapshot::capture(pasteboard));
    }

    void restore() {
        struct Case {
            int fetchedAfter;  // ms after the keystroke, -1 never
            int transferUntil; // ms
            int restoredAt;    // ms
        };
        for (const auto &[fetchedAfter, transferUntil, restoredAt] :
             {Case{10, 0, 500}, Case{-20, 0, 2000}, Case{1200, 0, 1200}, Case{-1, 0, 2000},
              Case{10, 900, 900}, Case{10, 9000, 2000}}) {
            Scene scene;
            if (fetchedAfter < -1)
                scene.pasteboard->fetched.latest = scene.dispatch->now() + fetchedAfter * 1ms;
            scene.paste(u"original"_qs);
            int time = 0;
            for (; time <= 2500 && scene.text() == u"link"; time += 10) {
                if (time == fetchedAfter)
                    scene.pasteboard->fetched.latest = scene.dispatch->now();
                scene.pasteboard->fetched.transferRunning = time < transferUntil;
                scene.dispatch->advance(10ms);
            }
            QCOMPARE(scene.text(), u"original"_qs);
            QVERIFY(!ClipboardRestorer::isDelivering());
            // Looks again every 25 ms.
            QVERIFY2(time >= restoredAt && time <= restoredAt + 40,
                     qPrintable(u"%1 instead of %2"_qs.arg(time).arg(restoredAt)));
        }
    }

    void whatIsCopiedMeanwhileStays() {
        Scene scene;
        scene.paste(u"original"_qs);
        scene.dispatch->advance(300ms);
        scene.pasteboard->copyText(u"foreign"_qs);
        scene.dispatch->advance(3s);
        QCOMPARE(scene.text(), u"foreign"_qs);
        QVERIFY(!ClipboardRestorer::isDelivering());
    }

    void armingAgainKeepsTheOlderSnapshotAndCallsTheRestoreOff() {
        Scene scene;
        scene.paste(u"user's"_qs);
        ClipboardRestorer::arm();
        scene.pasteboard->copyText(u"link 2"_qs);
        scene.dispatch->advance(3s);
        QCOMPARE(scene.text(), u"link 2"_qs);
        ClipboardRestorer::commit(scene.pasteboard->count, scene.dispatch->now());
        scene.dispatch->advance(3s);
        QCOMPARE(scene.text(), u"user's"_qs);
    }

    void abandoningDropsTheSnapshotAndTheRestore() {
        Scene scene;
        scene.paste(u"old"_qs);
        ClipboardRestorer::abandon();
        QVERIFY(!ClipboardRestorer::isDelivering());
        scene.paste(u"new"_qs);
        scene.dispatch->advance(3s);
        QCOMPARE(scene.text(), u"new"_qs);
    }

    void keystroke() {
        struct Case {
            bool trusted, canPost;
            ChildResult program;
            QString error;
        };
        const QList<Case> cases{
            {true, true, {}, {}},
            {false, true, {}, {}},
            {true, false, {}, {}},
            {false, true, {u"No"_qs, 0, {}}, u"Failed to launch keypresser: No"_qs},
            {false, true, {{}, 1, " not allowed\n"}, u"not allowed"_qs},
            {false, true, {{}, 3, "\n"}, u"keypresser exited 3"_qs},
        };
        for (const auto &[trusted, canPost, program, error] : cases) {
            FakePlatform platform;
            platform.keyboard->trusted = trusted;
            platform.keyboard->canPost = canPost;
            platform.childProcess->result = program;
            const auto start = platform.dispatch->now();
            const Pasting::Outcome outcome = Pasting::simulateCommandV(47, start);
            QCOMPARE(outcome.ok, error.isEmpty());
            QCOMPARE(outcome.error, error);
            const bool posted = trusted && canPost;
            QCOMPARE(platform.keyboard->events,
                     posted ? QStringList({"settle", "paste 47"}) : QStringList("settle"));
            QCOMPARE(platform.childProcess->runs.size(), posted ? 0 : 1);
            QCOMPARE(outcome.at - start, trusted ? 50ms : 0ms);
        }
    }
};

QTEST_GUILESS_MAIN(TestClipboard)
#include "test_clipboard.moc"
