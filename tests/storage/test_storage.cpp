#include "fakes/FakePlatform.h"
#include "storage/Keychain.h"
#include "storage/LogStore.h"
#include "storage/Settings.h"

#include <QSignalSpy>
#include <QTest>

#include <limits>

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
        QVERIFY(freshUser.contains(u"⌃⌥⌘V"_qs));
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

    void everyAssignmentIsStoredAndLoadsBack() {
        FakePlatform platform;
        const QStringList freshUser = loaded();
        Settings &settings = Settings::shared();
        const QSignalSpy changes(&settings, &Settings::didChange);
        settings.cloudId = u"c-0"_qs;
        settings.baseURL = u"https://b.example"_qs;
        QCOMPARE(settings.cloudId(), QString()); // that of another site
        settings.email = u"ann@b.example"_qs;
        settings.cloudId = u"c-1"_qs;
        settings.baseURL = settings.baseURL(); // the same again
        settings.hotkeyKeyCode = 38;
        settings.hotkeyModifiers = 256;
        settings.hotkey2KeyCode = 49;
        settings.hotkey2Modifiers = 768;
        settings.displayTemplate = u"{key}"_qs;
        settings.confluenceTemplate = u"{title}"_qs;
        settings.accountBaseURL = u"https://r.example"_qs;
        settings.pasteFormat = PasteFormat::Markdown;
        settings.accountPasteFormat = PasteFormat::PlainText;
        settings.restoreClipboardAfterPaste = false;
        settings.commentEmoji = QString();
        settings.typeEmojiMappings = {};
        settings.tokenSavedAt = platform.dispatch->wallTime();
        QVERIFY(changes.size() >= 16);
        const QStringList before = loaded();
        for (qsizetype i = 0; i < before.size(); ++i)
            QVERIFY2(before[i] != freshUser[i], qPrintable(before[i]));
        Settings::restart();
        QCOMPARE(loaded(), before);
        QCOMPARE(platform.defaults->stored.value(u"jiraEmail"_qs), QVariant(u"ann@b.example"_qs));
        Settings::shared().tokenSavedAt = std::nullopt;
        QVERIFY(!platform.defaults->stored.contains(u"tokenSavedAt"_qs));
    }

    void logKeepsTheNewest200() {
        FakePlatform platform;
        LogStore &log = LogStore::shared();
        for (int i = 1; i <= 250; ++i)
            log.write(QString::number(i));
        QCOMPARE(log.entries().size(), 200);
        QCOMPARE(log.entries().constFirst().message, u"51"_qs);
        QCOMPARE(log.entries().constLast().message, u"250"_qs);
    }

    void logIsStampedWhenWrittenAndClearedInTurn() {
        qputenv("TZ", "XXX-05:45"); // nobody lives by UTC and this at once
        tzset();
        FakePlatform platform;
        LogStore &log = LogStore::shared();
        const auto fromElsewhere = [&](const QString &message) {
            platform.dispatch->onBackground([&] { log.write(message); });
        };
        platform.dispatch->setWallTime(QDateTime({2026, 1, 2}, {8, 18, 9}, Qt::UTC));
        fromElsewhere(u"before"_qs);
        log.clear();
        fromElsewhere(u"late"_qs);
        log.write(u"at once"_qs);
        platform.dispatch->setWallTime(QDateTime({2026, 1, 2}, {8, 18, 10}, Qt::UTC));
        QCOMPARE(log.formattedAll(), u"[14:03:09] at once"_qs);
        platform.dispatch->drain();
        QCOMPARE(log.formattedAll(), u"[14:03:09] late"_qs);
        log.write(u"b\nc"_qs);
        QCOMPARE(log.formattedAll(), u"[14:03:09] late\n[14:03:10] b\nc"_qs);
        qunsetenv("TZ");
        tzset();
    }

    void logShowsForeignTextOnOneLine() {
        FakePlatform platform;
        const QList<std::pair<QString, QString>> cases{
            {u"a\r\nb\u2028c\u2029d\u0085e\vf\fg\th"_qs, u"a  b c d e f g h"_qs},
            {QString(u'\0') + u"\u001B[2J\u009B\uFDD0\uFFFE\U0001FFFF"_qs,
             u"\uFFFD\uFFFD[2J\uFFFD\uFFFD\uFFFD\uFFFD"_qs},
            {QString(QChar(0xD83D)) + u'x', u"\uFFFDx"_qs},
            {u"é\u00A0\u3000\U0001F469\u200D\U0001F4BB"_qs,
             u"é\u00A0\u3000\U0001F469\u200D\U0001F4BB"_qs},
        };
        for (const auto &[message, line] : cases) {
            log(message);
            QCOMPARE(platform.takeLog(), QStringList(line));
            QCOMPARE(LogStore::excerpt(message), line);
        }
        const QString hundred(100, u'x');
        QCOMPARE(LogStore::excerpt(hundred), hundred);
        QCOMPARE(LogStore::excerpt(hundred + u'y'), QString(hundred + u'…'));
        QCOMPARE(LogStore::excerpt(u"é\U0001F41E"_qs.repeated(60)),
                 QString(u"é\U0001F41E"_qs.repeated(50) + u'…'));
        QVERIFY(LogStore::excerpt(u'e' + QString(10'000'000, QChar(0x301))).size() < 1000);
    }

    void tokensAreKeptApartReplacedAndRemoved() {
        FakePlatform platform;
        const QString confluence = AppInfo::keychainAccountConfluence();
        QVERIFY(!Keychain::loadToken());
        QVERIFY(Keychain::saveToken(u" one\n"_qs));
        QVERIFY(Keychain::saveToken(u"two"_qs));
        QVERIFY(Keychain::saveToken(u"three"_qs, confluence));
        QCOMPARE(Keychain::loadToken(), u"two"_qs);
        Keychain::deleteToken();
        QVERIFY(!Keychain::loadToken());
        QCOMPARE(Keychain::loadToken(confluence), u"three"_qs);

        platform.secretStore->refusesAdditions = true;
        QVERIFY(!Keychain::saveToken(u"four"_qs, confluence));
        QVERIFY(!Keychain::loadToken(confluence));

        // Put there by other means: trimmed, and it must be text.
        QByteArray &stored = platform.secretStore->secrets["org.ostrowind.brindle/jira-api-token"];
        stored = " t1\r\n";
        QCOMPARE(Keychain::loadToken(), u"t1"_qs);
        stored = "t\xff";
        QVERIFY(!Keychain::loadToken());
        QVERIFY(platform.takeLog().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestStorage)
#include "test_storage.moc"
