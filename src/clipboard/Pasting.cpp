#include "clipboard/Pasting.h"

#include "model/Text.h"
#include "platform/Platform.h"

#include <QFileInfo>

#include <algorithm>
#include <optional>

namespace {

std::optional<quint16> currentLayoutKeyCode(char32_t wanted) {
    const auto layout = Platform::current().keyboard->currentLayout();
    if (!layout)
        return std::nullopt;
    const auto key = std::find(layout->begin(), layout->end(), wanted);
    if (key == layout->end())
        return std::nullopt;
    return static_cast<quint16>(key - layout->begin());
}

Pasting::Outcome pasteThroughProgram() {
    const Platform &platform = Platform::current();
    const ScriptedPaste paste = platform.keyboard->scriptedPaste();
    const QString name = QFileInfo(paste.program).fileName();
    const auto start = platform.dispatch->now();
    const ChildResult result = platform.childProcess->run(paste.program, paste.arguments);
    if (!result.launchError.isEmpty())
        return {false, QStringLiteral("Failed to launch %1: ").arg(name) + result.launchError,
                start};
    if (result.exitStatus == 0)
        return {true, {}, start};
    QString error = Text::trimmed(QString::fromUtf8(result.standardError));
    if (error.isEmpty())
        error = QStringLiteral("%1 exited %2").arg(name).arg(result.exitStatus);
    return {false, error, start};
}

} // namespace

quint16 Pasting::resolveVKeyCode() {
    Q_ASSERT(Platform::current().dispatch->isMainThread());
    return currentLayoutKeyCode(U'v').value_or(fallbackKeyCode);
}

Pasting::Outcome Pasting::simulateCommandV(quint16 vKey, Dispatch::Clock::time_point start) {
    const Platform &platform = Platform::current();
    Keyboard &keyboard = *platform.keyboard;
    const bool trusted = keyboard.isTrusted();
    if (trusted)
        platform.dispatch->sleepUntil(start + pause);
    keyboard.settleHeldKeys();
    const auto at = platform.dispatch->now();
    if (trusted && keyboard.postPaste(vKey))
        return {true, {}, at};
    return pasteThroughProgram();
}
