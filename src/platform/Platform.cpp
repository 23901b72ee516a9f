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

void Platform::finish() const {
    urlSession->cancelAll();
    secretStore->cancelAll();
    defaults->flush();
    dispatch->finish();
}
