#include "clipboard/ClipboardRestorer.h"

#include "clipboard/ClipboardSnapshot.h"
#include "platform/Platform.h"
#include "storage/LogStore.h"

#include <utility>

namespace {

/// A paste whose restore is due, by value, so that nothing that happens meanwhile changes it.
struct ScheduledRestore {
    std::optional<ClipboardSnapshot> original;
    qint64 expectedChangeCount = 0;
    Dispatch::Clock::time_point pastedAt;
    Dispatch::Clock::time_point latest;
};

struct State {
    bool isDelivering = false;
    std::optional<ClipboardSnapshot> pendingOriginal;
    std::optional<ScheduledRestore> scheduled;
    WorkItem pendingWork;
};

State &state() {
    static State instance;
    return instance;
}

bool targetStillNeedsTheLink(const ScheduledRestore &restore) {
    const PasteboardFetches fetches = Platform::current().pasteboard->fetches();
    const bool fetched = fetches.latest && *fetches.latest >= restore.pastedAt;
    return !fetched || fetches.transferRunning;
}

void restoreUnlessChanged(const ScheduledRestore &restore) {
    Pasteboard &pasteboard = *Platform::current().pasteboard;
    if (pasteboard.changeCount() != restore.expectedChangeCount) {
        log(QStringLiteral("enrich: clipboard changed since paste — skipping restore"));
        return;
    }
    restore.original->restore(pasteboard);
    log(QStringLiteral("enrich: original clipboard restored"));
}

void fallDue(const ScheduledRestore &restore) {
    Dispatch &dispatch = *Platform::current().dispatch;
    if (restore.original && targetStillNeedsTheLink(restore) && dispatch.now() < restore.latest) {
        constexpr std::chrono::milliseconds pause{25};
        state().pendingWork = dispatch.after(pause, [restore] { fallDue(restore); });
        return;
    }
    if (restore.original)
        restoreUnlessChanged(restore);
    state() = State();
}

} // namespace

bool ClipboardRestorer::isDelivering() {
    return state().isDelivering;
}

void ClipboardRestorer::arm() {
    state().pendingWork.cancel();
    state().scheduled.reset();
    if (!state().pendingOriginal)
        state().pendingOriginal = ClipboardSnapshot::capture(*Platform::current().pasteboard);
}

void ClipboardRestorer::markDelivering() {
    state().isDelivering = true;
}

void ClipboardRestorer::commit(qint64 expectedChangeCount, Dispatch::Clock::time_point pastedAt) {
    Dispatch &dispatch = *Platform::current().dispatch;
    const ScheduledRestore restore{state().pendingOriginal, expectedChangeCount, pastedAt,
                                   dispatch.now() + longestWindow};
    state().pendingWork.cancel();
    state().scheduled = restore;
    state().pendingWork = dispatch.after(window, [restore] { fallDue(restore); });
}

void ClipboardRestorer::abandon() {
    state().pendingWork.cancel();
    state() = State();
}

void ClipboardRestorer::finishNow() {
    if (state().scheduled && state().scheduled->original)
        restoreUnlessChanged(*state().scheduled);
    abandon();
}
