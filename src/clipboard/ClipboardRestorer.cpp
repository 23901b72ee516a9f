#include "clipboard/ClipboardRestorer.h"

#include "clipboard/ClipboardSnapshot.h"
#include "desktop/CurrentRun.h"
#include "platform/Platform.h"
#include "storage/LogStore.h"

#include <utility>

namespace {

/// A paste whose restore is due.
struct ScheduledRestore {
    std::optional<ClipboardSnapshot> original;
    qint64 expectedChangeCount = 0;
    Dispatch::Clock::time_point pastedAt;
    Dispatch::Clock::time_point latest;
};

struct State {
    std::optional<ClipboardSnapshot> pendingOriginal;
    WorkItem pendingWork;
};

State &state() {
    static State instance;
    return instance;
}

Pasteboard &pasteboard() {
    return *Platform::current().pasteboard;
}

/// Forgets everything about the paste; the caller moves the run on.
void reset() {
    pasteboard().onUseChange(nullptr);
    state().pendingWork.cancel();
    state() = State();
}

void end() {
    reset();
    CurrentRun::enter(RunPhase::Idle);
}

/// Who no longer owns the clipboard is asked by nobody.
bool targetStillNeedsTheLink(const ScheduledRestore &restore) {
    const PasteboardUse use = pasteboard().use();
    const bool fetched = use.latest && *use.latest >= restore.pastedAt;
    return use.isOurs && (!fetched || use.transferRunning);
}

void giveBack(const ScheduledRestore &restore) {
    pasteboard().onUseChange(nullptr);
    if (!restore.original || restore.original->kept().isEmpty()) {
        end();
        return;
    }
    restore.original->restore(pasteboard(), restore.expectedChangeCount, [](bool isRestored) {
        log(isRestored
                ? QStringLiteral("enrich: original clipboard restored")
                : QStringLiteral("enrich: clipboard changed since paste — skipping restore"));
        end();
    });
}

void fallDue(const ScheduledRestore &restore) {
    Dispatch &dispatch = *Platform::current().dispatch;
    state().pendingWork.cancel();
    const auto now = dispatch.now();
    if (!restore.original || !targetStillNeedsTheLink(restore) || now >= restore.latest) {
        giveBack(restore);
        return;
    }
    state().pendingWork = dispatch.at(restore.latest, [restore] { giveBack(restore); });
    pasteboard().onUseChange([restore] {
        if (!targetStillNeedsTheLink(restore)) {
            state().pendingWork.cancel();
            giveBack(restore);
        }
    });
}

} // namespace

bool ClipboardRestorer::isDelivering() {
    return CurrentRun::isDelivering();
}

void ClipboardRestorer::arm(const ClipboardContents &contents) {
    state().pendingWork.cancel();
    pasteboard().onUseChange(nullptr);
    if (!state().pendingOriginal)
        state().pendingOriginal = ClipboardSnapshot::capture(contents);
}

void ClipboardRestorer::disarm() {
    reset();
}

void ClipboardRestorer::markDelivering() {
    CurrentRun::enter(RunPhase::Delivering);
}

void ClipboardRestorer::commit(qint64 expectedChangeCount, Dispatch::Clock::time_point pastedAt) {
    CurrentRun::enter(RunPhase::WaitingToRestore);
    Dispatch &dispatch = *Platform::current().dispatch;
    const ScheduledRestore restore{state().pendingOriginal, expectedChangeCount, pastedAt,
                                   dispatch.now() + longestWindow};
    state().pendingWork.cancel();
    state().pendingWork = dispatch.after(window, [restore] { fallDue(restore); });
}

void ClipboardRestorer::abandon() {
    end();
}

void ClipboardRestorer::finishNow() {
    const auto original = state().pendingOriginal;
    reset();
    pasteboard().finish(original ? original->kept() : QList<PasteboardItem>());
}
