#include "desktop/CurrentRun.h"

#include "desktop/AppDelegate.h"

namespace {

RunPhase current = RunPhase::Idle;

bool isBetween(RunPhase first, RunPhase last) {
    return current >= first && current <= last;
}

} // namespace

RunPhase CurrentRun::phase() {
    return current;
}

void CurrentRun::enter(RunPhase phase) {
    if (current == RunPhase::Ended)
        return;
    const bool wasFetching = isFetching();
    current = phase;
    if (AppDelegate *app = AppDelegate::shared(); app && isFetching() != wasFetching)
        app->refreshStatusItemImage();
}

bool CurrentRun::isGettingTheLink() {
    return isBetween(RunPhase::Reading, RunPhase::Fetching);
}

bool CurrentRun::isFetching() {
    return isBetween(RunPhase::WaitingForKeyring, RunPhase::Fetching);
}

bool CurrentRun::isDelivering() {
    return isBetween(RunPhase::Writing, RunPhase::WaitingToRestore);
}

void CurrentRun::startAfresh() {
    current = RunPhase::Idle;
}
