#include "platform/gnome/GnomeBackends.h"

#include "platform/gnome/CustomKeybindings.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QStandardPaths>

#include <utility>

namespace {

/// What has the running program paste; its place only where its name alone does not lead to it, so
/// that the command stays right when it moves.
QString pasteCommand() {
    const QString program = QFileInfo(QCoreApplication::applicationFilePath()).canonicalFilePath();
    const QString name = QFileInfo(program).fileName();
    const bool isOnPath =
        QFileInfo(QStandardPaths::findExecutable(name)).canonicalFilePath() == program;
    QString quoted = program;
    quoted.replace(u'\'', QStringLiteral("'\\''"));
    return (isOnPath ? name : u'\'' + quoted + u'\'') + QStringLiteral(" paste");
}

} // namespace

bool GnomeBackends::isDesktop() {
    return qEnvironmentVariable("XDG_CURRENT_DESKTOP")
        .split(u':')
        .contains(QStringLiteral("GNOME"));
}

Result<std::shared_ptr<Hotkeys>> GnomeBackends::customKeybindings(std::shared_ptr<KeyProbe> probe) {
    const QString problem =
        isDesktop() ? CustomKeybindings::problem() : QStringLiteral("the desktop is not GNOME");
    if (!problem.isEmpty())
        return Result<std::shared_ptr<Hotkeys>>::failure(problem);
    return std::shared_ptr<Hotkeys>(std::make_shared<CustomKeybindings>(
        pasteCommand(), QDBusConnection::sessionBus(), std::move(probe)));
}
