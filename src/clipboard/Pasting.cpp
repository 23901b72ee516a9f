#include "clipboard/Pasting.h"

#include "model/Text.h"
#include "platform/Platform.h"

#include <QFileInfo>
#include <QStringDecoder>

#include <algorithm>
#include <memory>
#include <optional>

namespace {

using Done = std::function<void(const Pasting::Outcome &)>;

std::optional<quint16> currentLayoutKeyCode(char32_t wanted) {
    const auto layout = Platform::current().pasteKeys->layout();
    if (!layout)
        return std::nullopt;
    const auto key = std::find(layout->begin(), layout->end(), wanted);
    if (key == layout->end())
        return std::nullopt;
    return static_cast<quint16>(key - layout->begin());
}

/// What a program has said about its failure; empty when that can't be read.
QString errorText(const QByteArray &standardError) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(standardError);
    return decoder.hasError() ? QString() : Text::trimmed(text);
}

QString failureOf(const QString &name, const ChildResult &result) {
    if (!result.launchError.isEmpty())
        return QStringLiteral("Failed to launch %1: ").arg(name) + result.launchError;
    if (result.exitStatus == 0)
        return {};
    const QString told = errorText(result.standardError);
    return told.isEmpty() ? QStringLiteral("%1 exited %2").arg(name).arg(result.exitStatus) : told;
}

void pasteThroughProgram(const Done &done) {
    const Platform &platform = Platform::current();
    const auto start = platform.dispatch->now();
    const auto paste = platform.pasteKeys->scriptedPaste();
    if (!paste) {
        const QString reason = platform.pasteKeys->access().reason;
        done({false, reason.isEmpty() ? QStringLiteral("nothing here can press keys") : reason,
              start});
        return;
    }
    const QString name = QFileInfo(paste->program).fileName();
    platform.childProcess->run(paste->program, paste->arguments,
                               [name, start, done](const ChildResult &result) {
                                   const QString error = failureOf(name, result);
                                   done({error.isEmpty(), error, start});
                               });
}

void press(const PasteChord &chord, const Done &done) {
    const auto at = Platform::current().dispatch->now();
    Platform::current().pasteKeys->press(chord, [at, done](bool pressed) {
        if (pressed)
            done({true, {}, at});
        else
            pasteThroughProgram(done);
    });
}

/// A keystroke for which the application in front is looked for while the pause passes.
struct Keystroke {
    quint16 vKey = Pasting::fallbackKeyCode;
    Done done;
    std::optional<FrontWindow::Kind> front;
    bool isDue = false;

    void pressIfReady() const {
        if (front && isDue)
            press({vKey, *front == FrontWindow::Kind::Terminal}, done);
    }
};

} // namespace

quint16 Pasting::resolveVKeyCode() {
    Q_ASSERT(Platform::current().dispatch->isMainThread());
    return currentLayoutKeyCode(U'v').value_or(fallbackKeyCode);
}

void Pasting::simulateCommandV(quint16 vKey, Dispatch::Clock::time_point start, Done done) {
    const Platform &platform = Platform::current();
    if (platform.pasteKeys->access().state != PasteAccess::State::Ready) {
        platform.pasteKeys->settle([done] { pasteThroughProgram(done); });
        return;
    }
    const auto keystroke = std::make_shared<Keystroke>(Keystroke{vKey, std::move(done), {}, false});
    platform.frontWindow->find([keystroke](FrontWindow::Kind kind) {
        keystroke->front = kind;
        keystroke->pressIfReady();
    });
    platform.dispatch->at(start + pause, [keystroke] {
        Platform::current().pasteKeys->settle([keystroke] {
            keystroke->isDue = true;
            keystroke->pressIfReady();
        });
    });
}
