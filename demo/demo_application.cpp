// The application of the demonstration: the product with a site and gateway of its own on loopback
// and a keyring in memory. It tells on its output what it writes to the activity log.

#include "SampleSite.h"
#include "app/Launch.h"
#include "model/AppInfo.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/qt/TaskQueue.h"
#include "stage/GatewayThread.h"
#include "stage/JsonLines.h"
#include "stage/RedirectedUrlSession.h"
#include "storage/LogStore.h"

#include <QApplication>

namespace {

/// A keyring that starts with the tokens of the sample site and ends with the program.
class SampleKeyring : public SecretStore {
public:
    void add(const QString &service, const QString &account, const QByteArray &secret,
             std::function<void(Outcome)> done) override {
        m_secrets[{service, account}] = secret;
        m_answers.post([done = std::move(done)] { done(Outcome::Done); });
    }

    void copy(const QString &service, const QString &account,
              std::function<void(const Answer &)> done, std::function<void()>) override {
        const auto found = m_secrets.constFind({service, account});
        const Answer answer =
            found == m_secrets.cend() ? Answer{Outcome::Absent, {}} : Answer{Outcome::Done, *found};
        m_answers.post([done = std::move(done), answer] { done(answer); });
    }

    void remove(const QString &service, const QString &account,
                std::function<void(Outcome)> done) override {
        const bool wasThere = m_secrets.remove({service, account});
        m_answers.post([done = std::move(done), wasThere] {
            done(wasThere ? Outcome::Done : Outcome::Absent);
        });
    }

    void cancelAll() override {}
    void findState(std::function<void(State)> done) override {
        m_answers.post([done = std::move(done)] { done(State::Ready); });
    }

private:
    TaskQueue m_answers;
    QHash<std::pair<QString, QString>, QByteArray> m_secrets{
        {{AppInfo::bundleIdentifier(), AppInfo::keychainAccount()}, "sample-jira-token"},
        {{AppInfo::bundleIdentifier(), AppInfo::keychainAccountConfluence()},
         "sample-confluence-token"}};
};

void tellLastEntry() {
    const auto &entries = LogStore::shared().entries();
    if (!entries.isEmpty())
        say(QStringLiteral("log"),
            {{QStringLiteral("line"),
              LogStore::formattedTime(entries.last().date) + u' ' + entries.last().message}});
}

} // namespace

int main(int argc, char *argv[]) {
    const QApplication qt(argc, argv);
    nameApplication();
    const GatewayThread site(SampleSite::hosts(), SampleSite::replies());
    if (!site.get().problem().isEmpty()) {
        qCritical("The sample site does not start: %ls", qUtf16Printable(site.get().problem()));
        return 1;
    }
    QObject::connect(&LogStore::shared(), &LogStore::changed, &qt, tellLastEntry);
    Platform platform = makeLinuxPlatform();
    platform.urlSession =
        std::make_shared<RedirectedUrlSession>(site.get().port(), site.get().certificate());
    platform.secretStore = std::make_shared<SampleKeyring>();
    return runBrindle(std::move(platform));
}
