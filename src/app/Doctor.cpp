#include "app/Doctor.h"

#include "platform/Platform.h"

#include <QSysInfo>

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

using Doctor::Circumstances;
using Doctor::Tell;

constexpr std::chrono::seconds longest(7);

/// A capability by its name in the report.
struct Look {
    QString capability;
    std::function<void(const Tell &)> look;
    bool isNeeded = false; ///< without it nothing can be pasted
};

std::vector<Look> looksFor(const Circumstances &circumstances) {
    std::vector<Look> looks{
        {u"session"_s, Doctor::lookAtSession},
        {u"clipboard"_s, Doctor::lookAtClipboard, true},
        {u"hotkey"_s, [=](const Tell &tell) { Doctor::lookAtHotkey(circumstances, tell); }, true},
        {u"paste keys"_s, Doctor::lookAtPasteKeys, true},
        {u"front window"_s, Doctor::lookAtFrontWindow},
        {u"secure input"_s, Doctor::lookAtSecureInput},
        {u"tray"_s, Doctor::lookAtTray},
        {u"notifications"_s, Doctor::lookAtNotifications},
        {u"keyring"_s, Doctor::lookAtKeyring},
        {u"login item"_s, Doctor::lookAtLoginItem},
        {u"settings"_s, Doctor::lookAtSettings},
    };
    if (circumstances.network) {
        looks.push_back({u"gateway"_s, Doctor::lookAtGateway});
        looks.push_back({u"your site"_s, Doctor::lookAtSite});
    }
    return looks;
}

/// Collects what the looks tell, in their order.
struct Examination {
    std::vector<Look> looks;
    std::vector<std::optional<Finding>> findings;
    QString heading;
    std::function<void(const Diagnosis &)> done;
    WorkItem deadline;

    bool isComplete() const {
        return std::all_of(findings.begin(), findings.end(),
                           [](const auto &finding) { return finding.has_value(); });
    }

    void finish() {
        const auto tell = std::exchange(done, nullptr);
        if (!tell)
            return;
        deadline.cancel();
        Diagnosis diagnosis{heading, {}};
        for (size_t i = 0; i < looks.size(); ++i) {
            Finding finding = findings[i].value_or(
                Finding{{},
                        looks[i].isNeeded ? Finding::Mark::Problem : Finding::Mark::Note,
                        u"no answer within %1 seconds"_s.arg(longest.count())});
            finding.capability = looks[i].capability;
            diagnosis.findings.append(finding);
        }
        tell(diagnosis);
    }
};

QString heading(const Circumstances &circumstances) {
    const QString desktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP");
    return u"Brindle %1 on %2, desktop %3, session %4, toolkit %5; %6"_s.arg(
        QStringLiteral(BRINDLE_VERSION), QSysInfo::prettyProductName(),
        desktop.isEmpty() ? u"unknown"_s : desktop,
        qEnvironmentVariable("XDG_SESSION_TYPE", u"unknown"_s), QString::fromLatin1(qVersion()),
        circumstances.isRunningInstance ? u"as the running Brindle finds it"_s
                                        : u"no Brindle is running"_s);
}

} // namespace

void Doctor::examine(const Circumstances &circumstances,
                     std::function<void(const Diagnosis &)> done) {
    const auto all = std::make_shared<Examination>();
    all->looks = looksFor(circumstances);
    all->findings.resize(all->looks.size());
    all->heading = heading(circumstances);
    all->done = std::move(done);
    all->deadline = Platform::current().dispatch->after(longest, [all] { all->finish(); });
    for (size_t i = 0; i < all->looks.size(); ++i) {
        all->looks[i].look([all, i](const Finding &finding) {
            all->findings[i] = finding;
            if (all->isComplete()) // in a later turn, also where all tell at once
                Platform::current().dispatch->toMain([all] { all->finish(); });
        });
    }
}
