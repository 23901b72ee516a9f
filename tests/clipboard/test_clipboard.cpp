#include "clipboard/Clipboard.h"
#include "clipboard/ClipboardRestorer.h"
#include "clipboard/ClipboardSnapshot.h"
#include "clipboard/Pasting.h"
#include "fakes/FakePlatform.h"

#include <QTest>

using namespace std::chrono_literals;

namespace {
const QString italicFix = u"ABC-1 \uE000Fix\uE001"_qs;
}

class TestClipboard : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void link_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("url");
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("plain");
        QTest::addColumn<QString>("html");
        QTest::newRow("rich, to be escaped")
            << u"A & B <c> \"q\" 'a'"_qs << u"https://x/?a=1&b=\"2\""_qs << u"richLink"_qs
            << u"A & B <c> \"q\" 'a' (https://x/?a=1&b=\"2\")"_qs
            << u"<a href=\"https://x/?a=1&amp;b=&quot;2&quot;\">A &amp; B &lt;c&gt; "
               u"&quot;q&quot; &#39;a&#39;</a>"_qs;
        QTest::newRow("rich, styled")
            << italicFix << u"u"_qs << u"richLink"_qs << u"ABC-1 Fix (u)"_qs
            << u"<a href=\"u\">ABC-1 <i>Fix</i></a>"_qs;
        QTest::newRow("markdown") << italicFix << u"u"_qs << u"markdown"_qs
                                  << u"[ABC-1 *Fix*](u)"_qs << QString();
        QTest::newRow("markdown, bold, not escaped")
            << u"\uE002[D]\uE003"_qs << u"u)"_qs << u"markdown"_qs << u"[**[D]**](u))"_qs
            << QString();
        QTest::newRow("plain") << italicFix << u"u"_qs << u"plainText"_qs << u"ABC-1 Fix (u)"_qs
                               << QString();
        QTest::newRow("plain without text")
            << QString() << u"u"_qs << u"plainText"_qs << u" (u)"_qs << QString();
        QTest::newRow("placeholders of our own in the text")
            << u"%1 %2"_qs << u"%1"_qs << u"plainText"_qs << u"%1 %2 (%1)"_qs << QString();
        QTest::newRow("url only") << italicFix << u"u"_qs << u"urlOnly"_qs << u"u"_qs << QString();
    }

    void link() {
        QFETCH(QString, text);
        QFETCH(QString, url);
        QFETCH(QString, format);
        QFETCH(QString, html);
        FakePlatform platform;
        const QString plain = Clipboard::write(text, url, *PasteFormats::fromRawValue(format));
        QTEST(plain, "plain");
        FakePasteboard &pasteboard = *platform.pasteboard;
        QCOMPARE(pasteboard.text(PasteboardType::String), plain);
        QCOMPARE(pasteboard.text(PasteboardType::Html).value_or(QString()), html);
        QCOMPARE(pasteboard.contents->constFirst().size(), html.isEmpty() ? 1 : 3);
        QCOMPARE(pasteboard.count, 1);
    }

    void richLinkHasALinkInItsRtfOnlyForAValidUrl() {
        FakePlatform platform;
        Clipboard::write(u"é 🐞"_qs, u"https://x/y"_qs, PasteFormat::RichLink);
        QString rtf = *platform.pasteboard->text(PasteboardType::Rtf);
        QVERIFY(rtf.contains(u"HYPERLINK \"https://x/y\""));
        QVERIFY(rtf.contains(u"\\u-10179?\\u-9186?"));
        Clipboard::write(u"t"_qs, u"https://x/a b"_qs, PasteFormat::RichLink);
        rtf = *platform.pasteboard->text(PasteboardType::Rtf);
        QVERIFY(!rtf.contains(u"HYPERLINK"));
    }

    void snapshotKeepsTextTypesOfEveryItemByteForByte() {
        FakePlatform platform;
        FakePasteboard &pasteboard = *platform.pasteboard;
        const PasteboardItem rich{{"html", "x", QByteArray("<b>\0", 4)}, {"rtf", "y", "{\\rtf1}"}};
        const PasteboardItem file{{"file", "", "file:///a"}, {"string", "", "a"}};
        PasteboardItem withOthers = file;
        withOthers.insert(1, {"image", "", "png"});
        pasteboard.copy({rich, {{"image", "", "png"}}, withOthers});
        const auto snapshot = ClipboardSnapshot::capture(pasteboard);
        QCOMPARE(snapshot->items, (QList<PasteboardItem>{rich, {}, file}));
        snapshot->restore(pasteboard);
        QCOMPARE(*pasteboard.contents, (QList<PasteboardItem>{rich, file}));
    }

    void snapshotWithoutTextLeavesThePasteboardAlone() {
        FakePlatform platform;
        FakePasteboard &pasteboard = *platform.pasteboard;
        pasteboard.copy({{{"image", "", "png"}}});
        const auto snapshot = ClipboardSnapshot::capture(pasteboard);
        pasteboard.copyText(u"link"_qs);
        snapshot->restore(pasteboard);
        QCOMPARE(pasteboard.text(PasteboardType::String), u"link"_qs);
        pasteboard.contents.reset();
        QVERIFY(!ClipboardSnapshot::capture(pasteboard));
    }

    void restore_data() {
        QTest::addColumn<int>("fetchedAfter");     // ms after the keystroke, -1 never
        QTest::addColumn<int>("transferUntil");    // ms
        QTest::addColumn<int>("foreignCopyAfter"); // ms, -1 never
        QTest::addColumn<int>("restoredAt");       // ms, -1 never
        QTest::newRow("fetched at once") << 10 << 0 << -1 << 500;
        QTest::newRow("fetched before the keystroke only") << -20 << 0 << -1 << 2000;
        QTest::newRow("busy target") << 1200 << 0 << -1 << 1200;
        QTest::newRow("never fetched") << -1 << 0 << -1 << 2000;
        QTest::newRow("still being transferred") << 10 << 900 << -1 << 900;
        QTest::newRow("transfer without end") << 10 << 9000 << -1 << 2000;
        QTest::newRow("copied something else") << 10 << 0 << 300 << -1;
    }

    void restore() {
        QFETCH(int, fetchedAfter);
        QFETCH(int, transferUntil);
        QFETCH(int, foreignCopyAfter);
        QFETCH(int, restoredAt);
        FakePlatform platform;
        FakePasteboard &pasteboard = *platform.pasteboard;
        pasteboard.copyText(u"original"_qs);
        ClipboardRestorer::arm();
        pasteboard.copyText(u"link"_qs);
        ClipboardRestorer::markDelivering();
        const auto start = platform.dispatch->now();
        if (fetchedAfter < -1)
            pasteboard.fetched.latest = start + std::chrono::milliseconds(fetchedAfter);
        ClipboardRestorer::commit(pasteboard.count, start);

        int restored = -1;
        for (int time = 0; time <= 2500; time += 10) {
            if (time == fetchedAfter)
                pasteboard.fetched.latest = platform.dispatch->now();
            pasteboard.fetched.transferRunning = fetchedAfter >= 0 && time < transferUntil;
            if (time == foreignCopyAfter)
                pasteboard.copyText(u"foreign"_qs);
            if (restored < 0 && pasteboard.text(PasteboardType::String) == u"original")
                restored = time;
            platform.dispatch->advance(10ms);
        }
        if (restoredAt < 0) {
            QCOMPARE(pasteboard.text(PasteboardType::String), u"foreign"_qs);
            QCOMPARE(platform.takeLog(),
                     QStringList(u"enrich: clipboard changed since paste — skipping restore"_qs));
        } else {
            // Looks again every 25 ms.
            QVERIFY2(restored >= restoredAt && restored <= restoredAt + 40,
                     qPrintable(QString::number(restored)));
            QCOMPARE(platform.takeLog(), QStringList(u"enrich: original clipboard restored"_qs));
        }
        QVERIFY(!ClipboardRestorer::isDelivering());
    }

    void withoutASnapshotTheFlagStaysForHalfASecond() {
        FakePlatform platform;
        ClipboardRestorer::markDelivering();
        ClipboardRestorer::commit(0, platform.dispatch->now());
        platform.dispatch->advance(490ms);
        QVERIFY(ClipboardRestorer::isDelivering());
        platform.dispatch->advance(10ms);
        QVERIFY(!ClipboardRestorer::isDelivering());
        QVERIFY(platform.takeLog().isEmpty());
    }

    void armingAgainKeepsTheOlderSnapshotAndCallsTheRestoreOff() {
        FakePlatform platform;
        FakePasteboard &pasteboard = *platform.pasteboard;
        pasteboard.copyText(u"user's"_qs);
        ClipboardRestorer::arm();
        pasteboard.copyText(u"link 1"_qs);
        ClipboardRestorer::commit(pasteboard.count, platform.dispatch->now());
        ClipboardRestorer::arm();
        pasteboard.copyText(u"link 2"_qs);
        platform.dispatch->advance(3s);
        QCOMPARE(pasteboard.text(PasteboardType::String), u"link 2"_qs);
        ClipboardRestorer::commit(pasteboard.count, platform.dispatch->now());
        platform.dispatch->advance(3s);
        QCOMPARE(pasteboard.text(PasteboardType::String), u"user's"_qs);
    }

    void abandoningDropsTheSnapshotAndTheRestore() {
        FakePlatform platform;
        FakePasteboard &pasteboard = *platform.pasteboard;
        pasteboard.copyText(u"old"_qs);
        ClipboardRestorer::arm();
        ClipboardRestorer::markDelivering();
        ClipboardRestorer::commit(pasteboard.count, platform.dispatch->now());
        ClipboardRestorer::abandon();
        QVERIFY(!ClipboardRestorer::isDelivering());
        pasteboard.copyText(u"new"_qs);
        ClipboardRestorer::arm();
        pasteboard.copyText(u"link"_qs);
        ClipboardRestorer::commit(pasteboard.count, platform.dispatch->now());
        platform.dispatch->advance(3s);
        QCOMPARE(pasteboard.text(PasteboardType::String), u"new"_qs);
    }

    void vKey_data() {
        QTest::addColumn<QList<int>>("keysTypingV");
        QTest::addColumn<int>("key");
        QTest::newRow("no layout") << QList<int>() << 9;
        QTest::newRow("layout without v") << QList<int>{-1} << 9;
        QTest::newRow("Dvorak") << QList<int>{47} << 47;
        QTest::newRow("the lowest of two") << QList<int>{100, 12} << 12;
    }

    void vKey() {
        QFETCH(QList<int>, keysTypingV);
        FakePlatform platform;
        if (!keysTypingV.isEmpty())
            platform.keyboard->layout = KeyLayout{};
        for (const int key : keysTypingV) {
            if (key >= 0)
                platform.keyboard->layout->at(static_cast<size_t>(key)) = U'v';
        }
        if (platform.keyboard->layout)
            platform.keyboard->layout->at(3) = U'V';
        QTEST(static_cast<int>(Pasting::resolveVKeyCode()), "key");
    }

    void keystroke_data() {
        QTest::addColumn<bool>("trusted");
        QTest::addColumn<bool>("canPost");
        QTest::addColumn<QString>("launchError");
        QTest::addColumn<int>("exitStatus");
        QTest::addColumn<QByteArray>("standardError");
        QTest::addColumn<QStringList>("events");
        QTest::addColumn<int>("programsRun");
        QTest::addColumn<QString>("error");
        const QStringList posted{"settle", "paste 47"};
        const QStringList notPosted{"settle"};
        QTest::newRow("posted") << true << true << QString() << 0 << QByteArray() << posted << 0
                                << QString();
        QTest::newRow("not trusted")
            << false << true << QString() << 0 << QByteArray() << notPosted << 1 << QString();
        QTest::newRow("posting impossible")
            << true << false << QString() << 0 << QByteArray() << notPosted << 1 << QString();
        QTest::newRow("program missing")
            << false << true << u"No such file"_qs << 0 << QByteArray() << notPosted << 1
            << u"Failed to launch keypresser: No such file"_qs;
        QTest::newRow("program fails with a reason")
            << false << true << QString() << 1 << QByteArray(" not allowed\n") << notPosted << 1
            << u"not allowed"_qs;
        QTest::newRow("program fails silently")
            << false << true << QString() << 3 << QByteArray("\n") << notPosted << 1
            << u"keypresser exited 3"_qs;
    }

    void keystroke() {
        QFETCH(bool, trusted);
        QFETCH(bool, canPost);
        QFETCH(QString, launchError);
        QFETCH(int, exitStatus);
        QFETCH(QByteArray, standardError);
        QFETCH(QString, error);
        FakePlatform platform;
        platform.keyboard->trusted = trusted;
        platform.keyboard->canPost = canPost;
        platform.childProcess->result = {launchError, exitStatus, standardError};
        const auto start = platform.dispatch->now();
        const Pasting::Outcome outcome = Pasting::simulateCommandV(47, start);
        QCOMPARE(outcome.ok, error.isEmpty());
        QCOMPARE(outcome.error, error);
        QTEST(platform.keyboard->events, "events");
        QTEST(static_cast<int>(platform.childProcess->runs.size()), "programsRun");
        QCOMPARE(outcome.at - start, trusted ? 50ms : 0ms);
    }
};

QTEST_GUILESS_MAIN(TestClipboard)
#include "test_clipboard.moc"
