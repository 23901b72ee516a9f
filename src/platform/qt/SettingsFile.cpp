#include "platform/qt/SettingsFile.h"

#include "model/AppInfo.h"

#include <QEvent>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>
#include <QTemporaryFile>

#include <algorithm>
#include <cmath>

namespace {

/// What the toolkit writes as text, which is all that is left of it then.
bool isWrittenAsText(const QVariant &piece) {
    switch (piece.typeId()) {
    case QMetaType::QString:
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
        return true;
    default:
        return false;
    }
}

/// Text with commas written by hand arrives as a list, and as one of variants if any piece starts
/// with "@". Pieces that are more than text make no text.
bool isTextInPieces(const QVariant &value) {
    if (value.typeId() != QMetaType::QVariantList)
        return value.typeId() == QMetaType::QStringList;
    const QVariantList pieces = value.toList();
    return std::all_of(pieces.begin(), pieces.end(), isWrittenAsText);
}

/// Half a surrogate pair, which no file can hold, becomes U+FFFD as undecodable bytes do.
QString wellFormed(QString text) {
    for (qsizetype i = 0; i < text.size() && !text.isValidUtf16(); ++i) {
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate())
            ++i;
        else if (text[i].isSurrogate())
            text[i] = QChar::ReplacementCharacter;
    }
    return text;
}

/// A text, in one piece or several, in a form that a file can hold; other values as they are.
QVariant wellFormed(const QVariant &value) {
    if (value.typeId() == QMetaType::QString)
        return wellFormed(value.toString());
    if (!isTextInPieces(value))
        return value;
    const QStringList pieces = value.toStringList();
    QStringList mended;
    for (const QString &piece : pieces)
        mended.append(wellFormed(piece));
    return mended == pieces ? value : mended;
}

QByteArray contentOf(const QString &path) {
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

bool isText(const QByteArray &content) {
    // Stateless, it finds fault with half a character at the end as well.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(content);
    return !decoder.hasError();
}

/// The toolkit takes a byte order mark for damage, but only that: whether it is all there is.
bool isSoundBehindMark(const QByteArray &content) {
    const QByteArray mark("\xef\xbb\xbf");
    QTemporaryFile rest;
    if (!content.startsWith(mark) || !rest.open())
        return false;
    rest.write(content.mid(mark.size()));
    rest.close();
    const QSettings file(rest.fileName(), QSettings::IniFormat);
    file.allKeys(); // has it read
    return file.status() == QSettings::NoError;
}

} // namespace

bool SettingsFile::File::event(QEvent *event) {
    return event->type() == QEvent::UpdateRequest || QSettings::event(event);
}

SettingsFile::SettingsFile() : m_file(AppInfo::bundleIdentifier()) {
    load();
}

SettingsFile::SettingsFile(const QString &path) : m_file(path, QSettings::IniFormat) {
    load();
}

SettingsFile::~SettingsFile() {
    flush();
}

void SettingsFile::load() {
    m_file.setFallbacksEnabled(false);
    // Sections are read when first looked into, and only then found damaged.
    const QStringList keys = m_file.allKeys();
    const QFileInfo file(m_file.fileName());
    const QByteArray content = contentOf(file.filePath());
    m_isDamaged = (m_file.status() == QSettings::FormatError && !isSoundBehindMark(content)) ||
                  !isText(content) ||
                  std::any_of(keys.begin(), keys.end(), [this](const QString &key) {
                      const QVariant value = m_file.value(key);
                      return wellFormed(value) != value;
                  });
    if (m_isDamaged) {
        report(
            QStringLiteral("the settings file is damaged; what can't be read counts as missing"));
    } else if (file.exists() && (!file.isFile() || !file.isReadable())) {
        report(QStringLiteral("the settings file can't be read; the defaults are used"));
    }
}

std::optional<QVariant> SettingsFile::scalar(const QString &key) const {
    if (!m_file.contains(key))
        return std::nullopt;
    const QVariant value = wellFormed(m_file.value(key));
    if (!isTextInPieces(value)) // it reads as it will once it is written anew
        return isWrittenAsText(value) ? value.toString() : value;
    // Without pieces it was none: so does the toolkit read what it can't read, and write it.
    const QStringList pieces = value.toStringList();
    if (pieces.isEmpty())
        return std::nullopt;
    // Blanks around the commas are gone, and one after each is what people write.
    return pieces.join(QStringLiteral(", "));
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
    const QString text = string(key).value_or(QString()).trimmed().toLower();
    for (const auto word : {u"true", u"1", u"yes", u"on", u"y"}) {
        if (text == word)
            return true;
    }
    for (const auto word : {u"false", u"0", u"no", u"off", u"n"}) {
        if (text == word)
            return false;
    }
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
    m_isDirty = true;
}

void SettingsFile::remove(const QString &key) {
    m_file.remove(key);
    m_isDirty = true;
}

void SettingsFile::flush() {
    if (!std::exchange(m_isDirty, false) || !keepDamaged())
        return;
    mendTexts();
    removeNamelessLock();
    m_file.sync();
    if (m_file.status() == QSettings::AccessError)
        report(QStringLiteral("the settings couldn't be saved to disk; they last until Brindle "
                              "quits"));
}

bool SettingsFile::keepDamaged() {
    // Others may have edited it since it was read.
    if (!m_isDamaged && isText(contentOf(m_file.fileName())))
        return true;
    const QString copy = m_file.fileName() + QStringLiteral(".damaged");
    QFile::remove(copy);
    if (!QFile::copy(m_file.fileName(), copy)) {
        report(QStringLiteral("not saved: the damaged settings file can't be copied aside"));
        return false;
    }
    report(QStringLiteral("the damaged settings file was kept as ") + QFileInfo(copy).fileName());
    m_isDamaged = false;
    return true;
}

void SettingsFile::mendTexts() {
    for (const QString &key : m_file.allKeys()) {
        const QVariant value = m_file.value(key);
        if (const QVariant mended = wellFormed(value); mended != value)
            m_file.setValue(key, mended);
    }
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
