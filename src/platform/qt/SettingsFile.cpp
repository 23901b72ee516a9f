#include "platform/qt/SettingsFile.h"

#include "model/AppInfo.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace {

/// Text with commas written by hand arrives as a list, and as one of variants if any piece starts
/// with "@". Pieces that are more than text make no text.
bool isTextInPieces(const QVariant &value) {
    if (value.typeId() != QMetaType::QVariantList)
        return value.typeId() == QMetaType::QStringList;
    const QVariantList pieces = value.toList();
    return std::all_of(pieces.begin(), pieces.end(),
                       [](const QVariant &piece) { return piece.typeId() == QMetaType::QString; });
}

} // namespace

SettingsFile::SettingsFile() : m_file(AppInfo::bundleIdentifier()) {
    load();
}

SettingsFile::SettingsFile(const QString &path) : m_file(path, QSettings::IniFormat) {
    load();
}

void SettingsFile::load() {
    m_file.setFallbacksEnabled(false);
    m_file.allKeys(); // sections are read when first looked into, and only then found damaged
    const QFileInfo file(m_file.fileName());
    if (m_file.status() == QSettings::FormatError) {
        m_keepCopy = true;
        report(
            QStringLiteral("the settings file is damaged; what can't be read counts as missing"));
    } else if (file.exists() && (!file.isFile() || !file.isReadable())) {
        report(QStringLiteral("the settings file can't be read; the defaults are used"));
    }
}

std::optional<QVariant> SettingsFile::scalar(const QString &key) const {
    if (!m_file.contains(key))
        return std::nullopt;
    const QVariant value = m_file.value(key);
    // Blanks around the commas are gone, and one after each is what people write.
    if (isTextInPieces(value))
        return value.toStringList().join(QStringLiteral(", "));
    return value;
}

std::optional<QString> SettingsFile::string(const QString &key) const {
    const auto value = scalar(key);
    if (!value || !value->canConvert<QString>())
        return std::nullopt;
    return value->toString();
}

std::optional<qint64> SettingsFile::integer(const QString &key) const {
    bool isNumber = false;
    const auto value = scalar(key);
    const qint64 number = value ? value->toLongLong(&isNumber) : 0;
    return isNumber ? std::optional(number) : std::nullopt;
}

std::optional<bool> SettingsFile::boolean(const QString &key) const {
    const QString text = string(key).value_or(QString()).toLower();
    if (text == u"true" || text == u"1" || text == u"yes")
        return true;
    if (text == u"false" || text == u"0" || text == u"no")
        return false;
    return std::nullopt;
}

std::optional<double> SettingsFile::real(const QString &key) const {
    bool isNumber = false;
    const auto value = scalar(key);
    const double number = value ? value->toDouble(&isNumber) : 0;
    return isNumber && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::optional<QByteArray> SettingsFile::data(const QString &key) const {
    const auto value = scalar(key);
    if (!value || value->typeId() != QMetaType::QByteArray)
        return std::nullopt;
    return value->toByteArray();
}

void SettingsFile::set(const QString &key, const QVariant &value) {
    m_file.setValue(key, value);
    save();
}

void SettingsFile::remove(const QString &key) {
    m_file.remove(key);
    save();
}

void SettingsFile::save() {
    if (m_keepCopy) {
        const QString copy = m_file.fileName() + QStringLiteral(".damaged");
        QFile::remove(copy);
        if (!QFile::copy(m_file.fileName(), copy)) {
            report(QStringLiteral("not saved: the damaged settings file can't be copied aside"));
            return;
        }
        report(QStringLiteral("the damaged settings file was kept as ") +
               QFileInfo(copy).fileName());
        m_keepCopy = false;
    }
    removeNamelessLock();
    m_file.sync();
    if (m_file.status() == QSettings::AccessError)
        report(QStringLiteral("the settings couldn't be saved to disk; they last until Brindle "
                              "quits"));
}

void SettingsFile::removeNamelessLock() const {
    // A process killed in the middle of taking the lock leaves it without its name in it. For the
    // lock of a dead process nobody waits, but for one of nobody the toolkit does, half a minute.
    const QFileInfo lock(m_file.fileName() + QStringLiteral(".lock"));
    if (lock.exists() && lock.size() == 0)
        QFile::remove(lock.filePath());
}

void SettingsFile::onProblem(std::function<void(const QString &)> report) {
    m_report = std::move(report);
    for (const QString &problem : std::exchange(m_unreported, {}))
        m_report(problem);
}

void SettingsFile::report(const QString &problem) {
    if (m_report)
        m_report(problem);
    else
        m_unreported.append(problem);
}
