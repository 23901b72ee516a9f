// What `brindle` loads once it is clear that it is to run and not only to pass a word on.

#include "app/Doctor.h"
#include "app/Launch.h"
#include "model/AppInfo.h"
#include "platform/linux/LinuxPlatform.h"

#include <QApplication>
#include <QTextStream>

#include <cstdio>
#include <cstdlib>

extern "C" Q_DECL_EXPORT int runBrindleGui(int argc, char *argv[]) {
    const QApplication qt(argc, argv);
    nameApplication();
    const int status = runBrindle(makeLinuxPlatform());
    // Everything of ours has ended in its order. The toolkit's own end would wait for a look-up of
    // a host name that is stuck, for as long as the resolver likes.
    std::fflush(nullptr);
    std::_Exit(status);
}

// No window is shown, so that it does without a display.
extern "C" Q_DECL_EXPORT int runBrindleDoctor(int argc, char *argv[]) {
    QCoreApplication qt(argc, argv);
    QCoreApplication::setApplicationName(AppInfo::bundleIdentifier());
    Platform::install(makeLinuxPlatform());
    Platform::current().followLateChoices([](const QString &) {});
    Doctor::examine({.network = argc > 2}, [](const Diagnosis &diagnosis) {
        QTextStream(stdout) << diagnosis.text();
        QCoreApplication::exit(diagnosis.isGood() ? EXIT_SUCCESS : EXIT_FAILURE);
    });
    const int status = QCoreApplication::exec();
    Platform::current().finish();
    std::fflush(nullptr);
    std::_Exit(status);
}
