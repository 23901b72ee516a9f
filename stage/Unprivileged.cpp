#include "stage/Unprivileged.h"

#include <cerrno>
#include <cstring>
#include <grp.h>
#include <linux/capability.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// Keeps, of all that root may, the right to read, also for programs that are started: those of the
/// stage may lie in a folder of root's alone. Where root itself lacks the right, as in some
/// containers, the folder has to be readable for everybody.
void keepReading() {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct sets[_LINUX_CAPABILITY_U32S_3]{};
    const auto reading = static_cast<__u32>(CAP_TO_MASK(CAP_DAC_READ_SEARCH));
    sets[0] = {reading, reading, reading};
    if (syscall(SYS_capset, &header, sets) == 0)
        prctl(PR_CAP_AMBIENT, PR_CAP_AMBIENT_RAISE, CAP_DAC_READ_SEARCH, 0, 0);
}

} // namespace

QString leaveRoot() {
    if (geteuid() != 0)
        return {};
    const passwd *account = getpwnam("nobody");
    if (!account)
        return u"There is no account \"nobody\""_s;
    prctl(PR_SET_KEEPCAPS, 1);
    if (setgroups(0, nullptr) != 0 || setgid(account->pw_gid) != 0 || setuid(account->pw_uid) != 0)
        return u"Cannot become \"nobody\": "_s + QString::fromLocal8Bit(std::strerror(errno));
    keepReading();
    // A process that has changed its user hides from debuggers and leak checkers.
    prctl(PR_SET_DUMPABLE, 1);
    return {};
}
