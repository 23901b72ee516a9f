#include "platform/linux/SecretServiceStore.h"
#include "platform/qt/QtDispatch.h"
#include "stage/Keyring.h"
#include "stage/KeyringPrompter.h"
#include "stage/VirtualDesktop.h"
#include "stage/VirtualKeyboard.h"

#include <QDBusConnectionInterface>
#include <QElapsedTimer>
#include <QTest>

#include <csignal>

using namespace std::chrono_literals;
using Outcome = SecretStore::Outcome;

namespace {

const QString service = "org.ostrowind.brindle";

const char *name(Outcome outcome) {
    const char *names[] = {"Done", "Absent", "Refused", "Unavailable"};
    return names[static_cast<int>(outcome)];
}

/// A store and what it answers, one after the other: "Done", or "Done: secret" for a copy.
struct Asked {
    explicit Asked(const SecretServiceCalls::Limits &limits = {})
        : store(std::make_unique<SecretServiceStore>(std::make_shared<QtDispatch>(), limits)) {}

    QString add(const QString &account, const QByteArray &secret) {
        store->add(service, account, secret, [this](Outcome outcome) { answered(outcome); });
        return next();
    }
    QString remove(const QString &account) {
        beginRemoval(account);
        return next();
    }
    void beginRemoval(const QString &account) {
        store->remove(service, account, [this](Outcome outcome) { answered(outcome); });
    }
    QString copy(const QString &account) {
        beginCopy(account);
        return next();
    }
    void beginCopy(const QString &account) {
        store->copy(
            service, account,
            [this](const SecretStore::Answer &answer) { answered(answer.outcome, answer.secret); },
            [this] { ++waits; });
    }
    void answered(Outcome outcome, const QByteArray &secret = {}) {
        answers.append(secret.isEmpty() ? name(outcome)
                                        : name(outcome) + (": " + QString::fromUtf8(secret)));
    }
    /// Answers come in a later turn of the event loop, and here.
    QString next(bool mayBeThere = false) {
        const bool isEarly = !mayBeThere && !answers.isEmpty();
        const bool came = waitFor([this] { return !answers.isEmpty(); });
        return isEarly ? "(too early)" : came ? answers.takeFirst() : "(nothing)";
    }

    std::unique_ptr<SecretServiceStore> store;
    QStringList answers;
    int waits = 0;
};

/// Milliseconds.
qint64 timeToEnd(Asked &asked) {
    QElapsedTimer timer;
    timer.start();
    asked.store.reset();
    return timer.elapsed();
}

} // namespace

/// The session bus of a process is fixed once used, so all of them share one desktop.
class TestKeyring : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        m_desktop = std::make_unique<VirtualDesktop>(DesktopOptions{.keyring = true});
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
        m_desktop->join();
        m_daemon = static_cast<pid_t>(
            m_desktop->bus().interface()->servicePid("org.freedesktop.secrets").value());
        QVERIFY(m_daemon > 0);
        QCOMPARE(Asked().add("b", "two"), "Done");
    }

    void cleanupTestCase() { m_desktop.reset(); }

    void secretsAreKeptApartReplacedAndRemoved() {
        Asked asked;
        QCOMPARE(asked.copy("a"), "Absent");
        QCOMPARE(asked.remove("a"), "Absent");
        QCOMPARE(asked.add("a", "one\n é"), "Done");
        QCOMPARE(asked.copy("a"), "Done: one\n é");
        QCOMPARE(asked.add("a", "three"), "Done");
        QCOMPARE(asked.remove("a"), "Done"); // there was one
        QCOMPARE(asked.copy("a"), "Absent");
        QCOMPARE(asked.copy("b"), "Done: two");
        QCOMPARE(asked.waits, 0);
    }

    void hungServiceIsGivenUp() {
        Asked asked({.forService = 200ms});
        QCOMPARE(asked.copy("b"), "Done: two");
        QCOMPARE(kill(m_daemon, SIGSTOP), 0);
        const QStringList answers{asked.copy("b"), asked.add("b", "x"), asked.remove("b")};
        asked.beginCopy("b");
        QTest::qWait(1); // wherever its thread is by now
        const qint64 time = timeToEnd(asked);
        QCOMPARE(kill(m_daemon, SIGCONT), 0);
        QCOMPARE(answers, QStringList(3, "Unavailable"));
        QVERIFY2(time < 200, qPrintable(QString::number(time)));
        Asked again;
        QCOMPARE(again.copy("b"), "Done: two");
        QVERIFY(asked.answers.isEmpty());
    }

    void userWhoUnlocksGetsWhatWasAskedFor() {
        StageProcess prompter(m_desktop->environment());
        QVERIFY(prompter.launch("/usr/libexec/gcr-prompter", {}));
        QVERIFY(waitFor([&] {
            return m_desktop->bus()
                .interface()
                ->isServiceRegistered("org.gnome.keyring.SystemPrompter")
                .value();
        }));
        Asked asked;
        QVERIFY(lockKeyring(*m_desktop));
        asked.beginCopy("b");
        QVERIFY(unlocks(asked));
        QCOMPARE(asked.next(true), "Done: two");
        QCOMPARE(asked.waits, 1);
        QVERIFY(lockKeyring(*m_desktop));
        asked.beginRemoval("b");
        QVERIFY(unlocks(asked));
        QCOMPARE(asked.next(true), "Done");
        QCOMPARE(asked.copy("b"), "Absent");
        QCOMPARE(asked.add("b", "two"), "Done");
    }

    void userWhoWillNotUnlockLosesNothing() {
        KeyringPrompter prompter(m_desktop->bus());
        QVERIFY(lockKeyring(*m_desktop));
        Asked asked;
        QCOMPARE(asked.copy("a"), "Absent"); // which a locked keyring tells unasked
        QCOMPARE(asked.remove("a"), "Absent");
        QCOMPARE(prompter.opened, 0);
        QCOMPARE(asked.copy("b"), "Refused");
        QCOMPARE(asked.waits, 1);
        QCOMPARE(asked.remove("b"), "Refused");
        QCOMPARE(asked.add("a", "x"), "Refused");
        QCOMPARE(prompter.opened, 3); // each asked once
        QCOMPARE(asked.copy("b"), "Refused");
        QCOMPARE(asked.copy("a"), "Absent");

        prompter.dismisses = false; // nobody is there
        Asked hasty({.forUser = 300ms});
        QCOMPARE(hasty.copy("b"), "Refused");
        QCOMPARE(hasty.waits, 1);
    }

    void openPromptEndsWithTheStore_data() {
        QTest::addColumn<bool>("isHung");
        QTest::newRow("prompt open") << false;
        QTest::newRow("prompt open, service stopped") << true;
    }
    void openPromptEndsWithTheStore() {
        QFETCH(bool, isHung);
        KeyringPrompter prompter(m_desktop->bus());
        prompter.dismisses = false;
        Asked asked;
        asked.beginCopy("b");
        asked.beginCopy("a"); // waits its turn
        QVERIFY(waitFor([&] { return prompter.opened == 1 && asked.waits == 1; }));
        if (isHung)
            QCOMPARE(kill(m_daemon, SIGSTOP), 0);
        const qint64 time = timeToEnd(asked);
        QCOMPARE(kill(m_daemon, SIGCONT), 0);
        QVERIFY2(time < 200, qPrintable(QString::number(time)));
        QVERIFY(asked.answers.isEmpty());
    }

    // Last: the bus goes away with the desktop.
    void withoutAServiceNothingHangs() {
        m_desktop.reset();
        Asked asked;
        QCOMPARE(asked.add("a", "x"), "Unavailable");
        QCOMPARE(asked.copy("a"), "Unavailable");
        QCOMPARE(asked.remove("a"), "Unavailable");
    }

private:
    /// Types the password into the prompt, again if it was not there yet to take it.
    bool unlocks(const Asked &asked) const {
        VirtualKeyboard keys(m_desktop->keyboardDisplay());
        for (int i = 0; i < 15 && asked.answers.isEmpty(); ++i) {
            for (const int key :
                 {KEY_P, KEY_A, KEY_S, KEY_S, KEY_W, KEY_O, KEY_R, KEY_D, KEY_ENTER})
                keys.tap(keyCode(key));
            waitFor([&] { return !asked.answers.isEmpty(); }, 1000);
        }
        return !asked.answers.isEmpty();
    }

    std::unique_ptr<VirtualDesktop> m_desktop;
    pid_t m_daemon = 0;
};

QTEST_GUILESS_MAIN(TestKeyring)
#include "test_platform_keyring.moc"
