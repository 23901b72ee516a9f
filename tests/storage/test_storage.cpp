#include "fakes/FakePlatform.h"
#include "storage/LogStore.h"
#include "storage/Settings.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimeZone>

#include <functional>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

/// Every preference as text, for comparing a whole load.
QStringList loaded() {
    const Settings &s = Settings::shared();
    QStringList all{s.baseURL(),
                    s.email(),
                    s.cloudId(),
                    s.hotkeyDisplay(),
                    s.hotkey2Display(),
                    s.displayTemplate(),
                    s.confluenceTemplate(),
                    s.accountBaseURL(),
                    PasteFormats::rawValue(s.pasteFormat()),
                    PasteFormats::rawValue(s.accountPasteFormat()),
                    s.restoreClipboardAfterPaste() ? "restore" : "no restore",
                    s.commentEmoji(),
                    s.tokenSavedAt().value_or(QDateTime()).toUTC().toString(Qt::ISODateWithMs)};
    for (const TypeEmojiMapping &mapping : s.typeEmojiMappings())
        all.append(mapping.type);
    return all;
}

} // namespace

class TestStorage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void unusableValuesCountAsAbsent() {
        const QStringList freshUser = [] {
            const FakePlatform platform;
            return loaded();
        }();
        QVERIFY(freshUser.contains(u"⌃⌥⌘V"_s));
        QVERIFY(freshUser.contains("restore"));
        const QList<std::pair<QString, QVariant>> cases{
            {"hotkeyKeyCode", qint64{0}},
            {"hotkeyKeyCode", qint64{1} << 32},
            {"hotkeyKeyCode", "nine"},
            {"hotkey2KeyCode", qint64{9}}, // without modifiers
            {"hotkey2Modifiers", qint64{256}},
            {"displayTemplate", ""},
            {"confluenceTemplate", ""},
            {"pasteFormat", "urlOnly"}, // for records alone
            {"pasteFormat", "Markdown"},
            {"accountPasteFormat", "pdf"},
            {"typeEmojiMappings", QByteArray("[{\"type\":\"Bug\"}]")},
            {"tokenSavedAt", std::numeric_limits<double>::quiet_NaN()},
            {"tokenSavedAt", 1e300},
        };
        for (const auto &[key, stored] : cases) {
            FakePlatform platform;
            platform.defaults->stored.insert(key, stored);
            QCOMPARE(QStringList(key) + loaded(), QStringList(key) + freshUser);
            // Loading repairs nothing behind the user's back.
            QCOMPARE(platform.defaults->stored.size(), 1);
        }
    }

    void everyAssignmentIsOnDiskUnderItsName() {
        FakePlatform platform;
        const QStringList freshUser = loaded();
        Settings &s = Settings::shared();
        const QDateTime saved = QDateTime::fromMSecsSinceEpoch(1767362589123);
        const QList<std::tuple<QString, std::function<void()>, QVariant>> cases{
            {"jiraBaseURL", [&] { s.baseURL = u"https://b.example"_s; }, u"https://b.example"_s},
            {"jiraEmail", [&] { s.email = u"ann@b.example"_s; }, u"ann@b.example"_s},
            {"jiraCloudId", [&] { s.cloudId = u"c-1"_s; }, u"c-1"_s},
            {"hotkeyKeyCode", [&] { s.hotkeyKeyCode = 38; }, qint64{38}},
            {"hotkeyModifiers", [&] { s.hotkeyModifiers = 256; }, qint64{256}},
            {"hotkey2KeyCode", [&] { s.hotkey2KeyCode = 49; }, qint64{49}},
            {"hotkey2Modifiers", [&] { s.hotkey2Modifiers = 4294967295; }, qint64{4294967295}},
            {"displayTemplate", [&] { s.displayTemplate = u"{key}"_s; }, u"{key}"_s},
            {"confluenceTemplate", [&] { s.confluenceTemplate = u"{title}"_s; }, u"{title}"_s},
            {"accountBaseURL", [&] { s.accountBaseURL = u"https://r"_s; }, u"https://r"_s},
            {"pasteFormat", [&] { s.pasteFormat = PasteFormat::Markdown; }, u"markdown"_s},
            {"accountPasteFormat", [&] { s.accountPasteFormat = PasteFormat::PlainText; },
             u"plainText"_s},
            {"restoreClipboardAfterPaste", [&] { s.restoreClipboardAfterPaste = false; }, false},
            {"commentEmoji", [&] { s.commentEmoji = QString(); }, QString()},
            {"typeEmojiMappings", [&] { s.typeEmojiMappings = {}; }, QByteArray("[]")},
            {"tokenSavedAt", [&] { s.tokenSavedAt = saved; }, 1767362589.123},
        };
        for (const auto &[key, assign, stored] : cases) {
            const QSignalSpy changes(&s, &Settings::didChange);
            assign();
            QVERIFY2(platform.defaults->onDisk.value(key) == stored, qPrintable(key));
            QVERIFY2(!changes.isEmpty(), qPrintable(key));
        }
        QCOMPARE(platform.defaults->stored.size(), cases.size());
        const QStringList before = loaded();
        for (qsizetype i = 0; i < before.size(); ++i)
            QVERIFY2(before[i] != freshUser[i], qPrintable(before[i]));
        Settings::restart();
        QCOMPARE(loaded(), before); // the date to the millisecond
        Settings::shared().tokenSavedAt = std::nullopt;
        QVERIFY(!platform.defaults->onDisk.contains(u"tokenSavedAt"_s));
        Settings::shared().pasteFormat = PasteFormat::RichLink;
        QCOMPARE(platform.defaults->onDisk.value(u"pasteFormat"_s), u"richLink"_s);
        Settings::shared().accountPasteFormat = PasteFormat::UrlOnly;
        QCOMPARE(platform.defaults->onDisk.value(u"accountPasteFormat"_s), u"urlOnly"_s);
    }

    void cloudIdBelongsToItsSite() {
        const QList<std::tuple<QString, QString>> cases{
            {"https://b.example", "c-1"}, // the same
            {"https://B.example", ""},
            {"https://b.example/", ""},
            {"", ""},
        };
        for (const auto &[site, cloudId] : cases) {
            for (const bool isTyped : {false, true}) {
                FakePlatform platform;
                Settings &settings = Settings::shared();
                settings.baseURL = u"https://b.example"_s;
                settings.cloudId = u"c-1"_s;
                const int writes = platform.defaults->flushes;
                if (isTyped)
                    settings.baseURL.type(site);
                else
                    settings.baseURL = site;
                platform.dispatch->advance(std::chrono::milliseconds(500));
                QVERIFY2(settings.cloudId() == cloudId, qPrintable(site));
                QVERIFY2(platform.defaults->onDisk.value("jiraCloudId") == cloudId,
                         qPrintable(site));
                const bool isSame = isTyped && !cloudId.isEmpty();
                QCOMPARE(platform.defaults->flushes - writes, isSame ? 0 : 1); // both keys at once
            }
        }
    }

    void typingIsWrittenWhenItPauses() {
        using namespace std::chrono_literals;
        FakePlatform platform;
        Settings &settings = Settings::shared();
        const QSignalSpy changes(&settings, &Settings::didChange);
        settings.email.type("a");
        settings.email.type("a");
        QCOMPARE(changes.size(), 1); // the second was nothing new
        QCOMPARE(settings.email(), "a");
        const auto written = [&] {
            return platform.defaults->onDisk.value("jiraEmail").toString();
        };
        platform.dispatch->advance(400ms);
        settings.email.type("ab");
        QCOMPARE(written(), "");
        platform.dispatch->advance(100ms);
        QCOMPARE(written(), "ab"); // however fast the next key comes
        settings.email.type("abc");
        settings.restoreClipboardAfterPaste = false;
        QCOMPARE(written(), "abc");
        settings.email.type("abcd");
        settings.flush(); // the field is left
        QCOMPARE(written(), "abcd");
        const int writes = platform.defaults->flushes;
        platform.dispatch->advance(2s);
        QCOMPARE(platform.defaults->flushes, writes);
        settings.email.type("abcde");
        platform.dispatch->advance(500ms);
        QCOMPARE(written(), "abcde");
    }

    void tokenAge() {
        constexpr qint64 hour = 3600;
        const QList<std::tuple<std::optional<qint64>, std::optional<qint64>, bool>> cases{
            {{}, {}, false},
            {-3 * 24 * hour, 0, false}, // saved in the future
            {24 * hour - 1, 0, false},
            {24 * hour, 1, false},
            {79 * 24 * hour + 23 * hour, 79, false},
            {80 * 24 * hour - 1, 79, false},
            {80 * 24 * hour, 80, true},
            {81 * 24 * hour, 81, true},
        };
        for (const auto &[age, days, isAging] : cases) {
            const FakePlatform platform;
            const QByteArray row = QByteArray::number(age.value_or(-1));
            if (age)
                Settings::shared().tokenSavedAt = platform.dispatch->wallTime().addSecs(-*age);
            QVERIFY2(Settings::shared().daysSinceTokenSaved() == days, row);
            QVERIFY2(Settings::shared().tokenIsAging() == isAging, row);
        }
    }

    void logKeepsTheNewest200() {
        FakePlatform platform;
        LogStore &log = LogStore::shared();
        for (int i = 1; i <= 250; ++i)
            log.write(QString::number(i));
        QCOMPARE(log.entries().size(), 200);
        QCOMPARE(log.entries().constFirst().message, u"51"_s);
        QCOMPARE(log.entries().constLast().message, u"250"_s);
    }

    void logIsStampedWhenWrittenAndClearedInTurn() {
        qputenv("TZ", "ABC-05:45"); // nobody lives by UTC and this at once
        tzset();
        FakePlatform platform;
        LogStore &log = LogStore::shared();
        const auto fromElsewhere = [&](const QString &message) {
            platform.dispatch->onBackground([&] { log.write(message); });
        };
        platform.dispatch->setWallTime(QDateTime({2026, 1, 2}, {8, 18, 9}, QTimeZone::utc()));
        fromElsewhere(u"before"_s);
        log.clear();
        fromElsewhere(u"late"_s);
        log.write(u"at once"_s);
        platform.dispatch->setWallTime(QDateTime({2026, 1, 2}, {8, 18, 10}, QTimeZone::utc()));
        QCOMPARE(log.formattedAll(), u"[14:03:09] at once"_s);
        platform.dispatch->drain();
        QCOMPARE(log.formattedAll(), u"[14:03:09] late"_s);
        log.write(u"b\nc"_s);
        QCOMPARE(log.formattedAll(), u"[14:03:09] late\n[14:03:10] b\nc"_s);
        qunsetenv("TZ");
        tzset();
    }

    void logShowsForeignTextOnOneLine() {
        FakePlatform platform;
        const QList<std::pair<QString, QString>> cases{
            {u"a\r\nb\u2028c\u2029d\u0085e\vf\fg\th"_s, u"a  b c d e f g h"_s},
            {QString(u'\0') + u"\u001B[2J\u009B\uFDD0\uFFFE\U0001FFFF"_s,
             u"\uFFFD\uFFFD[2J\uFFFD\uFFFD\uFFFD\uFFFD"_s},
            {QString(QChar(0xD83D)) + u'x', u"\uFFFDx"_s},
            {u"é\u00A0\u3000\U0001F469\u200D\U0001F4BB"_s,
             u"é\u00A0\u3000\U0001F469\u200D\U0001F4BB"_s},
        };
        for (const auto &[message, line] : cases) {
            log(message);
            QCOMPARE(platform.takeLog(), QStringList(line));
            QCOMPARE(LogStore::excerpt(message), line);
        }
        const QString hundred(100, u'x');
        QCOMPARE(LogStore::excerpt(hundred), hundred);
        QCOMPARE(LogStore::excerpt(hundred + u'y'), QString(hundred + u'…'));
        QCOMPARE(LogStore::excerpt(u"é\U0001F41E"_s.repeated(60)),
                 QString(u"é\U0001F41E"_s.repeated(50) + u'…'));
        QVERIFY(LogStore::excerpt(u'e' + QString(10'000'000, QChar(0x301))).size() < 1000);
    }
};

QTEST_GUILESS_MAIN(TestStorage)
#include "test_storage.moc"
