#include "platform/linux/AutostartEntry.h"

#include "model/AppInfo.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSaveFile>
#include <QStandardPaths>

namespace {

/// Marks an entry as written by us.
constexpr const char *ownershipKey = "X-Brindle-Autostart";

QString path() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/autostart/%1.desktop").arg(AppInfo::bundleIdentifier());
}

using Entry = QHash<QByteArray, QByteArray>;

/// The keys of the main group; empty for a file that can't be read.
Entry readEntry(const QString &path) {
    Entry entry;
    QFile file(path);
    if (!file.open(QFile::ReadOnly))
        return entry;
    bool inMainGroup = false;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine().trimmed();
        if (line.startsWith('['))
            inMainGroup = line == "[Desktop Entry]";
        const qsizetype equals = line.indexOf('=');
        if (inMainGroup && equals > 0 && !line.startsWith('#'))
            entry.insert(line.left(equals).trimmed(), line.mid(equals + 1).trimmed());
    }
    return entry;
}

/// Some session managers honour one mark and some the other; either switches the entry off.
bool isSwitchedOff(const Entry &entry) {
    return entry.value("Hidden") == "true" || entry.value("X-GNOME-Autostart-enabled") == "false";
}

/// As the Exec key wants it: in double quotes, with a backslash before what stays special in them.
QByteArray quoted(const QString &program) {
    QByteArray text = program.toUtf8();
    for (const char special : {'\\', '"', '`', '$'})
        text.replace(special, QByteArray("\\") + special);
    text.replace('%', "%%");
    return '"' + text + '"';
}

} // namespace

LoginItems::Status AutostartEntry::status() {
    if (!QFileInfo::exists(path()))
        return Status::NotRegistered;
    const Entry entry = readEntry(path());
    const QString program = QString::fromUtf8(entry.value("TryExec"));
    if (!program.isEmpty() && QStandardPaths::findExecutable(program).isEmpty())
        return Status::NotFound;
    return isSwitchedOff(entry) ? Status::RequiresApproval : Status::Enabled;
}

QString AutostartEntry::add() {
    if (QFileInfo::exists(path()) && !readEntry(path()).contains(ownershipKey))
        return QStringLiteral(
            "an autostart entry of that name, not made by Brindle, is in the way");
    if (!QDir().mkpath(QFileInfo(path()).path()))
        return QStringLiteral("the autostart folder can't be made");
    const QString program = QCoreApplication::applicationFilePath();
    QSaveFile file(path());
    if (!file.open(QFile::WriteOnly))
        return file.errorString();
    file.write("[Desktop Entry]\nType=Application\nName=Brindle\n"
               "Comment=Paste readable titled links\n");
    file.write("Exec=" + quoted(program) + "\n");
    file.write("TryExec=" + program.toUtf8().replace('\\', "\\\\") + "\n");
    file.write("Icon=" + AppInfo::bundleIdentifier().toUtf8() + "\n");
    file.write("Terminal=false\nX-GNOME-Autostart-enabled=true\n");
    file.write(QByteArray(ownershipKey) + "=true\n");
    return file.commit() ? QString() : file.errorString();
}

QString AutostartEntry::remove() {
    QFile file(path());
    if (!file.exists())
        return {};
    if (!readEntry(path()).contains(ownershipKey))
        return QStringLiteral("the autostart entry was not made by Brindle");
    return file.remove() ? QString() : file.errorString();
}
