#include "platform/Platform.h"

#include <QtGlobal>

namespace {
std::unique_ptr<Platform> &installed() {
    static std::unique_ptr<Platform> platform;
    return platform;
}
} // namespace

Platform &Platform::current() {
    Q_ASSERT_X(installed(), "Platform::current", "no platform was installed");
    return *installed();
}

void Platform::install(Platform platform) {
    installed() = std::make_unique<Platform>(std::move(platform));
}

QString Platform::choiceOf(const QString &capability) const {
    const QString start = capability + QStringLiteral(": ");
    for (auto choice = choices.crbegin(); choice != choices.crend(); ++choice) {
        if (choice->startsWith(start))
            return choice->sliced(start.size());
    }
    return {};
}

void Platform::followLateChoices(std::function<void(const QString &)> tell) {
    lateChoices->tell = [tell = std::move(tell)](const QString &choice) {
        current().choices.append(choice);
        tell(choice);
    };
}

void Platform::finish() const {
    urlSession->cancelAll();
    secretStore->cancelAll();
    defaults->flush();
    dispatch->finish();
}
