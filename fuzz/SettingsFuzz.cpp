#include "fakes/FakePlatform.h"
#include "fuzz/Fuzz.h"
#include "platform/qt/SettingsFile.h"
#include "storage/Settings.h"

#include <QDebug>
#include <QFile>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using Fuzz::require;

namespace {

QByteArray contentOf(const QString &path) {
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const QString &path, const QByteArray &content) {
    QFile file(path);
    require(file.open(QFile::WriteOnly) && file.write(content) == content.size(), "room to write");
}

/// The toolkit drops a byte order mark that follows an escaped character; it can't be seen.
QString withoutMarks(QString text) {
    return text.remove(QChar::ByteOrderMark);
}

/// Every value of a file as each reader of the port gives it, under keys such as settings have.
QStringList readings(const QString &path, const SettingsFile &file) {
    static const QRegularExpression settingKey(u"\\A[A-Za-z0-9]+\\z"_s);
    QStringList all;
    const QStringList keys = QSettings(path, QSettings::IniFormat).allKeys();
    for (const QString &key : keys.filter(settingKey)) {
        const auto real = file.real(key);
        all.append(u"%1=%2|%3|%4|%5|%6"_s.arg(
            key, withoutMarks(file.string(key).value_or(u"-"_s)),
            QString::number(file.integer(key).value_or(-1)),
            QString::number(file.boolean(key) ? int(*file.boolean(key)) : -1),
            real ? QString::number(*real, 'g', 17) : u"-"_s,
            QString::fromLatin1(file.data(key).value_or("-").toHex())));
    }
    return all;
}

/// Settings loaded from any file are such as the program can work with.
void checkSettings(const Settings &settings) {
    require(settings.hotkeyKeyCode() != 0 && settings.hotkeyModifiers() != 0, "a hotkey");
    require(!settings.displayTemplate().isEmpty() && !settings.confluenceTemplate().isEmpty(),
            "templates that show something");
    require(settings.pasteFormat() != PasteFormat::UrlOnly, "a format that links can have");
    require(!settings.tokenSavedAt() || settings.tokenSavedAt()->isValid(), "a date or none");
    require(settings.daysSinceTokenSaved().value_or(0) >= 0, "an age that is not negative");
}

/// Each file has a name of its own: QSettings keeps what it read under a name for a while, and
/// tells a file that changed by its size and the second.
class Folder {
public:
    QString newPath() { return m_folder.filePath(QString::number(++m_count) + u".conf"_s); }
    QString copyOf(const QString &path) {
        const QString copy = newPath();
        require(QFile::copy(path, copy), "room to copy");
        return copy;
    }
    void empty() {
        for (; m_removed < m_count; ++m_removed) {
            const QString path = m_folder.filePath(QString::number(m_removed + 1) + u".conf"_s);
            QFile::remove(path);
            QFile::remove(path + u".damaged"_s);
        }
    }

private:
    QTemporaryDir m_folder;
    int m_count = 0;
    int m_removed = 0;
};

/// Reads a file of any content, changes one setting and looks at what is left of the rest.
void checkDamage(Folder &folder, const QByteArray &content) {
    const QString path = folder.newPath();
    write(path, content);
    const auto file = std::make_shared<SettingsFile>(path);
    int problems = 0;
    file->onProblem([&](const QString &) { ++problems; });
    const bool isDamaged = problems > 0;
    const QStringList before = readings(folder.copyOf(path), *file);

    Platform::current().defaults = file;
    Settings::restart();
    checkSettings(Settings::shared());
    require(contentOf(path) == content, "loading changes nothing");
    Settings::shared().commentEmoji = u"new"_s;
    require(contentOf(path + u".damaged"_s) == (isDamaged ? content : QByteArray()),
            "a damaged file is kept as it was");

    const QString copy = folder.copyOf(path);
    const SettingsFile again(copy);
    require(again.string(u"commentEmoji"_s) == u"new"_s, "what was assigned is on disk");
    // More may be there than before: a damaged section header comes out mended.
    const QStringList after = readings(copy, again);
    for (const QString &line : before) {
        if (!line.startsWith(u"commentEmoji=") && !after.contains(line)) {
            qInfo() << "lost:" << line << "left:" << after;
            require(false, "the other settings are what they were");
        }
    }
}

/// Stores values of every type and reads them back from the disk.
void checkValues(Folder &folder, Fuzz::Fields &fields) {
    const QByteArray bytes = fields.next();
    const QString text = QString::fromUtf8(fields.next()); // no file holds half a surrogate pair
    const qint64 number = fields.next().toLongLong();
    const double real = fields.next().toDouble();
    const QString path = folder.newPath();
    {
        SettingsFile file(path);
        file.set(u"data"_s, bytes);
        file.set(u"text"_s, text);
        file.set(u"number"_s, number);
        file.set(u"real"_s, real);
    }
    const SettingsFile file(folder.copyOf(path));
    require(file.data(u"data"_s) == bytes, "bytes come back");
    require(withoutMarks(file.string(u"text"_s).value_or(u"-"_s)) == withoutMarks(text),
            "a text comes back");
    require(file.integer(u"number"_s) == number, "a number comes back");
    require(!std::isfinite(real) || file.real(u"real"_s) == real, "a real number comes back");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    // A file may hold pictures, which the toolkit makes only for such an application.
    [[maybe_unused]] static const QGuiApplication &application = []() -> QGuiApplication & {
        static int count = 1;
        static char name[] = "fuzz_settings";
        static char *arguments[] = {name, nullptr};
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return *new QGuiApplication(count, arguments);
    }();
    [[maybe_unused]] static FakePlatform &platform = *new FakePlatform; // outlives every static
    static Folder folder;
    const QByteArray content(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    if (content.startsWith('=')) {
        Fuzz::Fields fields(data + 1, size - 1);
        checkValues(folder, fields);
    } else {
        checkDamage(folder, content);
    }
    folder.empty();
    return 0;
}
