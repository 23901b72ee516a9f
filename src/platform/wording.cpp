#include "platform/wording.h"

namespace {
Wording &current() {
    static Wording words = linuxWording();
    return words;
}
} // namespace

Wording macWording() {
    return {QStringLiteral("macOS"), QStringLiteral("Mac"), QStringLiteral(u"\u2318V"),
            QStringLiteral(u"\u2303\u2318Space"), QStringLiteral("osascript")};
}

Wording linuxWording() {
    return {QStringLiteral("the desktop"), QStringLiteral("computer"), QStringLiteral("Ctrl+V"),
            QStringLiteral("Ctrl+."), QStringLiteral("xdotool")};
}

const Wording &wording() {
    return current();
}

void setWording(const Wording &words) {
    current() = words;
}
