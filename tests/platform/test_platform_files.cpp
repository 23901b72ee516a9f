#include "platform/linux/AutostartEntry.h"
#include "platform/qt/SettingsFile.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

#include <sys/resource.h>

namespace {

QByteArray contentOf(const QString &path) {
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}

void write(const QString &path, const QByteArray &content) {
    QFile file(path);
    QVERIFY(file.open(QFile::WriteOnly));
    file.write(content);
}

} // namespace

class TestFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_folder = std::make_unique<QTemporaryDir>();
        m_path = m_folder->filePath("b.conf");
        m_problems.clear();
    }

    void everyTypeSurvivesTheDisk() {
        const QString text = "  \"é — 🐞\"; a,b=c\\n\n%1 [x]\t";
        const QByteArray bytes("\0\x01\xff{\"a\":1}", 10);
        {
            SettingsFile file(m_path);
            file.set("text", text);
            file.set("empty", QString());
            file.set("number", qint64{4294967295});
            file.set("off", false);
            file.set("real", 1234567890.125);
            file.set("data", bytes);
            file.set("gone", 1);
            file.remove("gone");
        }
        const SettingsFile file(m_path);
        QCOMPARE(file.string("text"), text);
        QCOMPARE(file.string("empty"), QString());
        QCOMPARE(file.integer("number"), 4294967295);
        QCOMPARE(file.boolean("off"), false);
        QCOMPARE(file.real("real"), 1234567890.125);
        QCOMPARE(file.data("data"), bytes);
        QVERIFY(!file.string("gone"));
    }

    void valuesOfTheWrongType() {
        const QList<std::tuple<QString, std::optional<qint64>, std::optional<bool>>> cases{
            {"maybe", {}, {}},
            {"12", 12, {}},
            {"1", 1, true},
            {"False", {}, false},
            {"{key}, {summary}", {}, {}},
            {"@{key}, {summary}", {}, {}},
            {"99999999999999999999", {}, {}},
        };
        for (const auto &[text, integer, boolean] : cases) {
            write(m_path, "[General]\nk=" + text.toUtf8() + "\nv=@Variant(\\0\\0)\n");
            const SettingsFile file(m_path);
            QCOMPARE(file.string("k"), text);
            QCOMPARE(file.integer("k"), integer);
            QCOMPARE(file.boolean("k"), boolean);
            QVERIFY(!file.data("k") && !file.string("v"));
        }
    }

    void damagedFileIsKeptAsideBeforeItIsReplaced() {
        const QByteArray damaged =
            "[General]\njiraEmail=ann\nthis is no setting\n\xff\xfe\0garbage";
        write(m_path, damaged);
        SettingsFile file(m_path);
        listen(file);
        QCOMPARE(m_problems.size(), 1);
        QCOMPARE(file.string("jiraEmail"), QString("ann"));
        QCOMPARE(contentOf(m_path), damaged);
        file.set("commentEmoji", "x");
        QCOMPARE(contentOf(m_path + ".damaged"), damaged);
        QCOMPARE(m_problems.size(), 2);
        QCOMPARE(SettingsFile(m_path).string("jiraEmail"), QString("ann"));
    }

    void unreadableFileGivesDefaultsAndAProblem() {
        QVERIFY(QDir().mkpath(m_path)); // a folder where the file should be
        SettingsFile file(m_path);
        listen(file);
        QCOMPARE(m_problems.size(), 1);
        QVERIFY(!file.string("k"));
        file.set("k", "v");
        QCOMPARE(file.string("k"), QString("v")); // lasts in memory
        QVERIFY(m_problems.size() > 1);
    }

    void fullDiskIsReportedAndLeavesTheOldFile() {
        SettingsFile(m_path).set("k", "old");
        const QByteArray before = contentOf(m_path);
        SettingsFile file(m_path);
        listen(file);
        // A limit on the size of files stops writes as a full disk does.
        rlimit usual{};
        getrlimit(RLIMIT_FSIZE, &usual);
        const auto handler = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit full{0, usual.rlim_max};
        setrlimit(RLIMIT_FSIZE, &full);
        file.set("k", "new");
        setrlimit(RLIMIT_FSIZE, &usual);
        std::signal(SIGXFSZ, handler);
        QCOMPARE(m_problems.size(), 1);
        QCOMPARE(file.string("k"), QString("new"));
        QCOMPARE(contentOf(m_path), before);
        file.set("k", "newer");
        QCOMPARE(SettingsFile(m_path).string("k"), QString("newer"));
    }

    void lockOfAKilledProcessIsNotWaitedFor() {
        write(m_path + ".lock", {});
        QElapsedTimer timer;
        timer.start();
        SettingsFile(m_path).set("k", "v");
        QVERIFY(timer.elapsed() < 15000); // else it is half a minute
        QCOMPARE(SettingsFile(m_path).string("k"), QString("v"));
    }

    void foreignAutostartEntryIsReadAndNeverTouched() {
        using Status = LoginItems::Status;
        const QList<std::pair<QByteArray, Status>> cases{
            {"TryExec=/bin/sh\n[Desktop Action x]\nHidden=true\n", Status::Enabled},
            {"Hidden=true\n", Status::RequiresApproval},
            {"X-GNOME-Autostart-enabled=false\n", Status::RequiresApproval},
            {"TryExec=/nowhere/brindle\nHidden=true\n", Status::NotFound},
        };
        qputenv("XDG_CONFIG_HOME", m_folder->path().toLocal8Bit());
        AutostartEntry entry;
        QCOMPARE(entry.status(), Status::NotRegistered);
        QCOMPARE(entry.remove(), QString());
        QVERIFY(QDir(m_folder->path()).mkdir("autostart"));
        const QString path = m_folder->filePath("autostart/org.ostrowind.brindle.desktop");
        for (const auto &[lines, status] : cases) {
            const QByteArray foreign = "[Desktop Entry]\nExec=other\n" + lines;
            write(path, foreign);
            QCOMPARE(entry.status(), status);
            QVERIFY(!entry.add().isEmpty());
            QVERIFY(!entry.remove().isEmpty());
            QCOMPARE(contentOf(path), foreign);
        }
    }

private:
    void listen(SettingsFile &file) {
        file.onProblem([this](const QString &problem) { m_problems.append(problem); });
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
    QStringList m_problems;
};

QTEST_GUILESS_MAIN(TestFiles)
#include "test_platform_files.moc"
