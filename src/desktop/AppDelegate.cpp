#include "desktop/AppDelegate.h"

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

void AppDelegate::setIsFetching(bool isFetching) {
    m_isFetching = isFetching;
    refreshStatusItemImage();
}
