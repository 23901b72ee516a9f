#include "fakes/FakePlatform.h"
#include "storage/Keychain.h"
#include "storage/LogStore.h"
#include "storage/Settings.h"

#include <QSignalSpy>
#include <QTest>

#include <limits>

namespace {

/// Every preference in one line of text each, for comparing a whole load.
QVariantHash loaded() {
    const Settings &s = Settings::shared();
    QStringList types;
    for (const TypeEmojiMapping &mapping : s.typeEmojiMappings())
        types.append(mapping.type);
    return {{"baseURL", s.baseURL()},
            {"email", s.email()},
            {"cloudId", s.cloudId()},
            {"hotkey", s.hotkeyDisplay()},
            {"hotkey2", s.hotkey2Display()},
            {"displayTemplate", s.displayTemplate()},
            {"confluenceTemplate", s.confluenceTemplate()},
            {"accountBaseURL", s.accountBaseURL()},
            {"pasteFormat", PasteFormats::rawValue(s.pasteFormat())},
            {"accountPasteFormat", PasteFormats::rawValue(s.accountPasteFormat())},
            {"restore", s.restoreClipboardAfterPaste()},
            {"commentEmoji", s.commentEmoji()},
            {"types", types},
            {"tokenSavedAt", s.tokenSavedAt().value_or(QDateTime())}};
}

const QVariantHash freshUser{{"baseURL", ""},
                             {"email", ""},
                             {"cloudId", ""},
                             {"hotkey", u"⌃⌥⌘V"_qs},
                             {"hotkey2", "Not set"},
                             {"displayTemplate", "{key} - {TYPE} - {summary}"},
                             {"confluenceTemplate", u"{title} — {space}"_qs},
                             {"accountBaseURL", ""},
                             {"pasteFormat", "richLink"},
                             {"accountPasteFormat", "urlOnly"},
                             {"restore", true},
                             {"commentEmoji", u"💬"_qs},
                             {"types", QStringList{"Bug", "Story", "Task", "Epic", "Sub-task"}},
                             {"tokenSavedAt", QDateTime()}};

} // namespace

class TestStorage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void load_data() {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<QString>("changed");
        QTest::addColumn<QVariant>("expected");
        const auto row = [](const char *name, const QString &key, const QVariant &stored,
                            const QString &changed = {}, const QVariant &expected = {}) {
            QTest::newRow(name) << key << stored << changed << expected;
        };
        row("fresh user", "nothing", 0);
        row("site", "jiraBaseURL", "https://a.example/ ", "baseURL", "https://a.example/ ");
        row("key code", "hotkeyKeyCode", qint64{38}, "hotkey", u"⌃⌥⌘J"_qs);
        row("key code 0", "hotkeyKeyCode", qint64{0});
        row("key code negative", "hotkeyKeyCode", qint64{-1});
        row("key code above 32 bits", "hotkeyKeyCode", qint64{1} << 32);
        row("key code is text", "hotkeyKeyCode", "nine");
        row("modifiers", "hotkeyModifiers", qint64{768}, "hotkey", u"⇧⌘V"_qs);
        row("modifiers 0", "hotkeyModifiers", qint64{0});
        row("alternate without modifiers", "hotkey2KeyCode", qint64{9});
        row("alternate without key", "hotkey2Modifiers", qint64{256});
        row("template empty", "displayTemplate", "");
        row("template", "displayTemplate", "{key}", "displayTemplate", "{key}");
        row("confluence template empty", "confluenceTemplate", "");
        row("format url only", "pasteFormat", "urlOnly");
        row("format in other case", "pasteFormat", "Markdown");
        row("format", "pasteFormat", "markdown", "pasteFormat", "markdown");
        row("record format", "accountPasteFormat", "richLink", "accountPasteFormat", "richLink");
        row("record format unknown", "accountPasteFormat", "pdf");
        row("restore off", "restoreClipboardAfterPaste", false, "restore", false);
        row("comment emoji empty", "commentEmoji", "", "commentEmoji", "");
        row("emoji table damaged", "typeEmojiMappings", QByteArray("[{\"type\":\"Bug\"}]"));
        row("emoji table empty", "typeEmojiMappings", QByteArray("[]"), "types", QStringList());
        row("token date 0", "tokenSavedAt", 0.0);
        row("token date negative", "tokenSavedAt", -5.0);
        row("token date not a number", "tokenSavedAt", std::numeric_limits<double>::quiet_NaN());
        row("token date beyond time", "tokenSavedAt", 1e300);
        row("token date", "tokenSavedAt", 86400.5, "tokenSavedAt",
            QDateTime::fromMSecsSinceEpoch(86400500, Qt::UTC));
    }

    void load() {
        QFETCH(QString, key);
        QFETCH(QVariant, stored);
        QFETCH(QString, changed);
        QFETCH(QVariant, expected);
        FakePlatform platform;
        platform.defaults->stored.insert(key, stored);
        QVariantHash wanted = freshUser;
        if (!changed.isEmpty())
            wanted[changed] = expected;
        QCOMPARE(loaded(), wanted);
        // Loading repairs nothing behind the user's back.
        QCOMPARE(platform.defaults->stored.size(), 1);
    }

    void everyAssignmentIsStoredAndLoadsBack() {
        FakePlatform platform;
        Settings &settings = Settings::shared();
        const QSignalSpy changes(&settings, &Settings::didChange);
        settings.baseURL = u"https://b.example"_qs;
        settings.email = u"ann@b.example"_qs;
        settings.cloudId = u"c-1"_qs;
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
        settings.commentEmoji = u"🗨"_qs;
        settings.typeEmojiMappings = {{QUuid::createUuid(), u"Spike"_qs, u"🦔"_qs}};
        settings.tokenSavedAt = platform.dispatch->wallTime();
        QVERIFY(changes.size() >= 16);
        const QVariantHash before = loaded();
        Settings::restart();
        QCOMPARE(loaded(), before);
        QCOMPARE(platform.defaults->stored.value(u"jiraEmail"_qs), QVariant(u"ann@b.example"_qs));
        Settings::shared().tokenSavedAt = std::nullopt;
        QVERIFY(!platform.defaults->stored.contains(u"tokenSavedAt"_qs));
    }

    void changingTheSiteForgetsItsCloudId() {
        FakePlatform platform;
        Settings &settings = Settings::shared();
        settings.baseURL = u"https://a.example"_qs;
        settings.cloudId = u"c-1"_qs;
        settings.baseURL = u"https://a.example"_qs;
        QCOMPARE(settings.cloudId(), u"c-1"_qs);
        settings.baseURL = u"https://A.example"_qs;
        QCOMPARE(settings.cloudId(), QString());
        QCOMPARE(platform.defaults->stored.value(u"jiraCloudId"_qs), QVariant(QString()));
    }

    void tokenAge_data() {
        QTest::addColumn<qint64>("secondsAgo");
        QTest::addColumn<qint64>("days");
        QTest::addColumn<bool>("aging");
        const qint64 day = 86400;
        QTest::newRow("an hour short of 80 days") << 80 * day - 3600 << qint64{79} << false;
        QTest::newRow("80 days") << 80 * day << qint64{80} << true;
        QTest::newRow("in the future") << -day << qint64{0} << false;
    }

    void tokenAge() {
        QFETCH(qint64, secondsAgo);
        FakePlatform platform;
        Settings &settings = Settings::shared();
        QVERIFY(!settings.daysSinceTokenSaved());
        QVERIFY(!settings.tokenIsAging());
        settings.tokenSavedAt = platform.dispatch->wallTime().addSecs(-secondsAgo);
        QTEST(*settings.daysSinceTokenSaved(), "days");
        QTEST(settings.tokenIsAging(), "aging");
    }

    void logKeepsTheNewest200AndFormatsThem() {
        FakePlatform platform;
        LogStore &log = LogStore::shared();
        QCOMPARE(log.formattedAll(), QString());
        for (int i = 1; i <= 250; ++i)
            log.write(QString::number(i));
        QCOMPARE(log.entries().size(), 200);
        QCOMPARE(log.entries().constFirst().message, u"51"_qs);
        platform.takeLog();

        log.write(u"a"_qs);
        platform.dispatch->setWallTime(platform.dispatch->wallTime().addSecs(1));
        log.write(u"b\nc"_qs);
        QCOMPARE(log.formattedAll(), u"[14:03:09] a\n[14:03:10] b\nc"_qs);
    }

    void logFromAnotherThreadAndClearingWaitForTheMainThread() {
        FakePlatform platform;
        LogStore &log = LogStore::shared();
        platform.dispatch->onBackground([&] { log.write(u"late"_qs); });
        log.write(u"early"_qs);
        QCOMPARE(log.entries().size(), 1);
        platform.dispatch->drain();
        QCOMPARE(platform.takeLog(), QStringList({"early", "late"}));
        log.write(u"x"_qs);
        log.clear();
        QCOMPARE(log.entries().size(), 1);
        platform.dispatch->drain();
        QVERIFY(log.entries().isEmpty());
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
    }

    void storedTokenIsTrimmedAndMustBeText() {
        FakePlatform platform;
        const auto store = [&](const QByteArray &bytes) {
            platform.secretStore->secrets[u"org.ostrowind.brindle/jira-api-token"_qs] = bytes;
        };
        store(" t1\r\n");
        QCOMPARE(Keychain::loadToken(), u"t1"_qs);
        store(" \n");
        QCOMPARE(Keychain::loadToken(), QString());
        store("t\xff");
        QVERIFY(!Keychain::loadToken());
        QVERIFY(platform.takeLog().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestStorage)
#include "test_storage.moc"
