#include "platform/linux/AutostartEntry.h"

#include "model/AppInfo.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

// GLib's headers use a name that Qt defines as a macro.
#undef signals
#include <glib.h>

#include <memory>
#include <utility>

namespace {

/// Marks an entry as written by us.
constexpr const char *ownershipKey = "X-Brindle-Autostart";

QString path() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/autostart/%1.desktop").arg(AppInfo::bundleIdentifier());
}

constexpr const char *group = G_KEY_FILE_DESKTOP_GROUP;

using KeyFile = std::unique_ptr<GKeyFile, decltype(&g_key_file_unref)>;

/// The entry; an empty one for a file that can't be read.
KeyFile readEntry() {
    KeyFile entry(g_key_file_new(), g_key_file_unref);
    g_key_file_load_from_file(entry.get(), QFile::encodeName(path()).constData(), G_KEY_FILE_NONE,
                              nullptr);
    return entry;
}

QString text(const KeyFile &entry, const char *key) {
    const std::unique_ptr<char, decltype(&g_free)> value(
        g_key_file_get_string(entry.get(), group, key, nullptr), g_free);
    return QString::fromUtf8(value.get());
}

bool isOurs(const KeyFile &entry) {
    return g_key_file_has_key(entry.get(), group, ownershipKey, nullptr);
}

/// Some session managers honour one mark and some the other; either switches the entry off.
bool isSwitchedOff(const KeyFile &entry) {
    return text(entry, G_KEY_FILE_DESKTOP_KEY_HIDDEN) == u"true" ||
           text(entry, "X-GNOME-Autostart-enabled") == u"false";
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
    const KeyFile entry = readEntry();
    const QString program = text(entry, G_KEY_FILE_DESKTOP_KEY_TRY_EXEC);
    if (!program.isEmpty() && QStandardPaths::findExecutable(program).isEmpty())
        return Status::NotFound;
    return isSwitchedOff(entry) ? Status::RequiresApproval : Status::Enabled;
}

QString AutostartEntry::add() {
    if (QFileInfo::exists(path()) && !isOurs(readEntry()))
        return QStringLiteral(
            "an autostart entry of that name, not made by Brindle, is in the way");
    if (!QDir().mkpath(QFileInfo(path()).path()))
        return QStringLiteral("the autostart folder can't be made");
    const QString program = QCoreApplication::applicationFilePath();
    const KeyFile entry(g_key_file_new(), g_key_file_unref);
    const std::pair<const char *, QByteArray> lines[] = {
        {G_KEY_FILE_DESKTOP_KEY_TYPE, "Application"},
        {G_KEY_FILE_DESKTOP_KEY_NAME, AppInfo::displayName().toUtf8()},
        {G_KEY_FILE_DESKTOP_KEY_COMMENT, "Paste readable titled links"},
        {G_KEY_FILE_DESKTOP_KEY_EXEC, quoted(program)},
        {G_KEY_FILE_DESKTOP_KEY_TRY_EXEC, program.toUtf8()},
        {G_KEY_FILE_DESKTOP_KEY_ICON, AppInfo::bundleIdentifier().toUtf8()},
        {G_KEY_FILE_DESKTOP_KEY_TERMINAL, "false"},
        {"X-GNOME-Autostart-enabled", "true"},
        {ownershipKey, "true"},
    };
    for (const auto &[key, value] : lines)
        g_key_file_set_string(entry.get(), group, key, value.constData());
    GError *error = nullptr;
    if (g_key_file_save_to_file(entry.get(), QFile::encodeName(path()).constData(), &error))
        return {};
    const std::unique_ptr<GError, decltype(&g_error_free)> owned(error, g_error_free);
    return QString::fromUtf8(owned->message);
}

QString AutostartEntry::remove() {
    QFile file(path());
    if (!file.exists())
        return {};
    if (!isOurs(readEntry()))
        return QStringLiteral("the autostart entry was not made by Brindle");
    return file.remove() ? QString() : file.errorString();
}
