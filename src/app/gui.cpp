// What `brindle` loads once it is clear that it is to run and not only to pass a word on.

#include "app/Launch.h"
#include "platform/linux/LinuxPlatform.h"

#include <QApplication>

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
