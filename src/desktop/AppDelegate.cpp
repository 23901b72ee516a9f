#include "desktop/AppDelegate.h"

#include "desktop/CurrentRun.h"

namespace {
AppDelegate *running = nullptr;
}

AppDelegate *AppDelegate::shared() {
    return running;
}

AppDelegate::~AppDelegate() {
    if (running == this)
        running = nullptr;
}

void AppDelegate::publish() {
    running = this;
}

bool AppDelegate::isFetching() {
    return CurrentRun::isFetching();
}
