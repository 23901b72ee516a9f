#include "fakes/FakePlatform.h"
#include "storage/Keychain.h"

#include <QTest>

namespace {

QString name(Keychain::Outcome outcome) {
    const char *names[] = {"Done", "Absent", "Refused", "Unavailable"};
    return names[static_cast<int>(outcome)];
}

/// The tokens of one account, asked for and waited for; a user who answers every prompt.
struct Tokens {
    QString load() {
        Keychain::loadToken(
            account,
            [this](const Keychain::TokenAnswer &given) {
                answer =
                    given.outcome == Keychain::Outcome::Done ? given.token : name(given.outcome);
            },
            [this] { ++waits; });
        return answered();
    }
    QString save(const QString &token) {
        Keychain::saveToken(token, account,
                            [this](Keychain::Outcome given) { answer = name(given); });
        return answered();
    }
    QString clear() {
        Keychain::deleteToken(account, [this](Keychain::Outcome given) { answer = name(given); });
        return answered();
    }
    QString answered() {
        if (answer)
            return "(too early)";
        platform.dispatch->drain();
        if (platform.secretStore->isPrompting())
            platform.secretStore->answerPrompt(unlocks);
        platform.dispatch->drain();
        const QString given = answer.value_or("(nothing)");
        answer.reset();
        return given;
    }

    FakePlatform &platform;
    QString account;
    bool unlocks = true;
    int waits = 0;
    std::optional<QString> answer{};
};

} // namespace

class TestKeychain : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tokensAreKeptApartReplacedAndRemoved() {
        FakePlatform platform;
        Tokens jira{platform, AppInfo::keychainAccount()};
        Tokens confluence{platform, AppInfo::keychainAccountConfluence()};
        QCOMPARE(jira.load(), "Absent");
        QCOMPARE(jira.clear(), "Absent");
        QCOMPARE(jira.save(" one\n"), "Done");
        QCOMPARE(platform.secretStore->secrets.value("org.ostrowind.brindle/jira-api-token"),
                 " one\n"); // as it was given
        QCOMPARE(jira.load(), "one");
        QCOMPARE(jira.save("two"), "Done");
        QCOMPARE(confluence.save("three"), "Done");
        QCOMPARE(jira.load(), "two");
        QCOMPARE(jira.clear(), "Done");
        QCOMPARE(jira.load(), "Absent");
        QCOMPARE(confluence.load(), "three");
        QCOMPARE(platform.secretStore->secrets.keys(),
                 QStringList("org.ostrowind.brindle/confluence-api-token"));

        platform.secretStore->refusesAdditions = true;
        QCOMPARE(confluence.save("four"), "Unavailable");
        QCOMPARE(confluence.load(), "Absent");

        // Put there by other means: trimmed, and it must be text.
        QByteArray &stored = platform.secretStore->secrets["org.ostrowind.brindle/jira-api-token"];
        stored = " t1\r\n";
        QCOMPARE(jira.load(), "t1");
        stored = "  ";
        QCOMPARE(jira.load(), ""); // there, but empty
        stored = "t\xff";
        QCOMPARE(jira.load(), "Absent");
        QVERIFY(platform.takeLog().isEmpty());
    }

    void lockedKeyringLosesNothing() {
        FakePlatform platform;
        Tokens jira{platform, AppInfo::keychainAccount()};
        jira.save("one");
        for (const bool unlocks : {false, true}) {
            const auto refusedOr = [&](const char *outcome) {
                return unlocks ? outcome : "Refused";
            };
            jira.unlocks = unlocks;
            const auto locked = [&]() -> Tokens & {
                platform.secretStore->isLocked = true;
                return jira;
            };
            QCOMPARE(locked().load(), refusedOr("one"));
            QCOMPARE(jira.waits, unlocks ? 2 : 1);
            QCOMPARE(locked().save("two"), refusedOr("Done"));
            QCOMPARE(platform.secretStore->secrets.size(), 1);
            QCOMPARE(platform.secretStore->secrets.begin().value(), unlocks ? "two" : "one");
            QCOMPARE(locked().clear(), refusedOr("Done"));
            QCOMPARE(platform.secretStore->secrets.size(), unlocks ? 0 : 1);
        }
        platform.secretStore->failure = Keychain::Outcome::Unavailable;
        QCOMPARE(jira.load(), "Unavailable");
        QCOMPARE(jira.save("x"), "Unavailable");
        QCOMPARE(jira.clear(), "Unavailable");
    }
};

QTEST_GUILESS_MAIN(TestKeychain)
#include "test_storage_keychain.moc"
