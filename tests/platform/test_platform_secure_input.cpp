#include "fakes/FakePlatform.h"
#include "platform/linux/SecureInputs.h"
#include "platform/linux/SessionLock.h"
#include "stage/VirtualDesktop.h"

#include <QTest>

using namespace std::chrono_literals;
using Answer = SecureInput::Answer;

namespace {

/// Answers when it is told to, or never.
class LateLook : public SecureInput {
public:
    void check(std::chrono::milliseconds, std::function<void(Answer)> done) override {
        answer = std::move(done);
    }
    std::function<void(Answer)> answer;
};

/// The screen saver of a session.
class ScreenSaver : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.ScreenSaver")

public:
    bool isLocked = false;

public Q_SLOTS:
    bool GetActive() const { return isLocked; }
};

Answer ask(SecureInput &look) {
    std::optional<Answer> answer;
    // Far beyond the wait: who does not answer by itself fails.
    look.check(1h, [&](Answer given) { answer = given; });
    return waitFor([&] { return answer.has_value(); }) ? *answer : Answer::Unknown;
}

} // namespace

class TestSecureInput : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void looksAreCombined() {
        struct Case {
            const char *name;
            std::optional<Answer> first, second; ///< nothing: it does not answer
            Answer combined;
            bool isDecidedEarly; ///< before the deadline
        };
        const QList<Case> cases{
            {"both no", Answer::No, Answer::No, Answer::No, true},
            {"one yes", Answer::No, Answer::Yes, Answer::Yes, true},
            {"yes before the other", Answer::Yes, {}, Answer::Yes, true},
            {"one does not know", Answer::Unknown, Answer::No, Answer::Unknown, true},
            {"one is silent", Answer::No, {}, Answer::Unknown, false},
        };
        for (const auto &[name, first, second, combined, isDecidedEarly] : cases) {
            const auto dispatch = std::make_shared<ManualDispatch>();
            const auto one = std::make_shared<LateLook>(), other = std::make_shared<LateLook>();
            SecureInputs looks(dispatch, {one, other});
            QList<Answer> answers;
            looks.check(250ms, [&](Answer answer) { answers.append(answer); });
            if (first)
                one->answer(*first);
            if (second)
                other->answer(*second);
            QVERIFY2(answers.isEmpty() != isDecidedEarly, name);
            dispatch->advance(250ms);
            QVERIFY2(answers == QList<Answer>{combined}, name);
        }
    }

    void sessionLock() {
        VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        desktop.join();
        // No login manager, whatever machine this is.
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere");
        SessionLock lock;
        QCOMPARE(ask(lock), Answer::No); // nobody is there to ask

        ScreenSaver saver;
        QDBusConnection bus = desktop.bus();
        QVERIFY(bus.registerObject("/org/freedesktop/ScreenSaver", &saver,
                                   QDBusConnection::ExportAllSlots));
        QVERIFY(bus.registerService("org.freedesktop.ScreenSaver"));
        for (const bool isLocked : {false, true, false}) {
            saver.isLocked = isLocked;
            QCOMPARE(ask(lock), isLocked ? Answer::Yes : Answer::No);
        }
    }
};

QTEST_GUILESS_MAIN(TestSecureInput)
#include "test_platform_secure_input.moc"
