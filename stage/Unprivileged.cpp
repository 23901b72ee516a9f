#include "stage/Unprivileged.h"

#include <cerrno>
#include <cstring>
#include <grp.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

QString leaveRoot() {
    if (geteuid() != 0)
        return {};
    const passwd *account = getpwnam("nobody");
    if (!account)
        return u"There is no account \"nobody\""_s;
    if (setgroups(0, nullptr) != 0 || setgid(account->pw_gid) != 0 || setuid(account->pw_uid) != 0)
        return u"Cannot become \"nobody\": "_s + QString::fromLocal8Bit(std::strerror(errno));
    // A process that has changed its user hides from debuggers and leak checkers.
    prctl(PR_SET_DUMPABLE, 1);
    return {};
}
