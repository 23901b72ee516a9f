#include "platform/linux/SettingsFile.h"

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

class TestSettingsFile : public QObject {
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
            file.set("on", true);
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
        QCOMPARE(file.boolean("on"), true);
        QCOMPARE(file.real("real"), 1234567890.125);
        QCOMPARE(file.data("data"), bytes);
        QVERIFY(!file.string("gone"));
    }

    void valuesOfTheWrongType_data() {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QString>("string");
        QTest::addColumn<qint64>("integer"); // -1 for none
        QTest::addColumn<int>("boolean");    // -1 for none
        QTest::newRow("word") << QByteArray("k=maybe") << "maybe" << qint64{-1} << -1;
        QTest::newRow("number") << QByteArray("k=12") << "12" << qint64{12} << -1;
        QTest::newRow("one") << QByteArray("k=1") << "1" << qint64{1} << 1;
        QTest::newRow("switch") << QByteArray("k=False") << "False" << qint64{-1} << 0;
        QTest::newRow("too large")
            << QByteArray("k=99999999999999999999") << "99999999999999999999" << qint64{-1} << -1;
        QTest::newRow("text with a comma")
            << QByteArray("k={key}, {summary}") << "{key}, {summary}" << qint64{-1} << -1;
        QTest::newRow("text with a comma and an at sign")
            << QByteArray("k=@{key}, {summary}") << "@{key}, {summary}" << qint64{-1} << -1;
        QTest::newRow("bytes of a strange kind")
            << QByteArray("k=@Variant(\\0\\0)") << QString() << qint64{-1} << -1;
    }

    void valuesOfTheWrongType() {
        QFETCH(QByteArray, line);
        write(m_path, "[General]\n" + line + "\n");
        const SettingsFile file(m_path);
        QTEST(file.string("k").value_or(QString()), "string");
        QTEST(file.integer("k").value_or(-1), "integer");
        const auto boolean = file.boolean("k");
        QTEST(boolean ? int(*boolean) : -1, "boolean");
        QVERIFY(!file.data("k"));
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

private:
    void listen(SettingsFile &file) {
        file.onProblem([this](const QString &problem) { m_problems.append(problem); });
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
    QStringList m_problems;
};

QTEST_GUILESS_MAIN(TestSettingsFile)
#include "test_platform_settings_file.moc"
