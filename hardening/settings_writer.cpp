// Writes settings in rounds, as the product writes them, until it is killed. Goes on from the round
// in the file, and tells of each round that is over and of each problem.

#include "hardening/WrittenRounds.h"
#include "platform/Platform.h"
#include "platform/qt/QtDispatch.h"
#include "platform/qt/SettingsFile.h"
#include "stage/JsonLines.h"
#include "storage/Settings.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

int main(int argc, char *argv[]) {
    const QCoreApplication application(argc, argv);
    Platform platform;
    platform.dispatch = std::make_shared<QtDispatch>();
    platform.defaults = std::make_shared<SettingsFile>();
    platform.defaults->onProblem([](const QString &what) {
        say(u"problem"_s, {{u"what"_s, what}});
    });
    Platform::install(platform);
    for (int round = WrittenRounds::read(Settings::shared()).constFirst();;) {
        round = std::max(round, 0) + 1;
        WrittenRounds::write(Settings::shared(), round);
        say(u"written"_s, {{u"round"_s, round}});
    }
}
