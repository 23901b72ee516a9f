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

GnomeBackends::GnomeBackends(std::shared_ptr<Dispatch> dispatch)
    : m_dispatch(std::move(dispatch)) {}

Result<std::shared_ptr<Hotkeys>> GnomeBackends::customKeybindings() {
    if (const QString problem = CustomKeybindings::problem(); !problem.isEmpty())
        return Result<std::shared_ptr<Hotkeys>>::failure(problem);
    m_probe = std::make_shared<KeyProbe>(m_dispatch);
    return std::shared_ptr<Hotkeys>(std::make_shared<CustomKeybindings>(
        pasteCommand(), QDBusConnection::sessionBus(), m_probe));
}

std::shared_ptr<HeldKeys> GnomeBackends::heldKeys() const {
    return m_probe;
}
