#include "platform/wording.h"

#include "model/HotkeyFormat.h"
#include "model/HotkeyWords.h"

namespace {
Wording &current() {
    static Wording words = linuxWording();
    return words;
}
} // namespace

Wording macWording() {
    return {QStringLiteral("macOS"), QStringLiteral("Mac"), QStringLiteral(u"\u2318V"),
            QStringLiteral(u"\u2303\u2318Space"), HotkeyFormat::describe};
}

Wording linuxWording() {
    return {QStringLiteral("the desktop"), QStringLiteral("computer"), QStringLiteral("Ctrl+V"),
            QStringLiteral("Ctrl+."), hotkeyInWords};
}

const Wording &wording() {
    return current();
}

void setWording(const Wording &words) {
    current() = words;
}
