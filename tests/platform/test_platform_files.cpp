#include "platform/linux/AutostartEntry.h"
#include "platform/qt/SettingsFile.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

#include <sys/resource.h>

using namespace Qt::StringLiterals;

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
            {"0", 0, false},
            {"2", 2, {}},
            {"False", {}, false},
            {"TRUE", {}, true},
            {"Off", {}, false},
            {"on", {}, true},
            {"NO", {}, false},
            {"Yes", {}, true},
            {"n", {}, false},
            {"Y", {}, true},
            {"offline", {}, {}},
            {"{key}, {summary}", {}, {}},
            {"@{key}, {summary}", {}, {}},
            {"99999999999999999999", {}, {}},
        };
        for (const auto &[text, integer, boolean] : cases) {
            const QString path = m_folder->filePath(text.left(5)); // it is cached by its path
            write(path, "[General]\nk=" + text.toUtf8() + "\nv=@Variant(\\0\\0)\n" +
                            "list=@Variant(\\0\\0\\0\\xb\\0\\0\\0\\x1)\n"
                            "truth=@Variant(\\0\\0\\0\\x1\\x1)\n");
            const SettingsFile file(path);
            QCOMPARE(file.string("k"), text);
            QVERIFY2(file.integer("k") == integer, qPrintable(text));
            QVERIFY2(file.boolean("k") == boolean, qPrintable(text));
            QVERIFY(!file.data("k") && !file.string("v") && !file.string("list"));
            QVERIFY(file.boolean("truth") == true && !file.integer("truth")); // "true" once saved
        }
    }

    void damage_data() {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("email");
        QTest::addColumn<bool>("isDamaged");
        const QByteArray sound = "[General]\njiraEmail=ann\n";
        const QByteArray mark = "\xef\xbb\xbf";
        QTest::newRow("sound") << sound << "ann" << false;
        QTest::newRow("empty") << QByteArray() << "(none)" << false;
        QTest::newRow("mark") << mark + sound << "ann" << false;
        QTest::newRow("mark alone") << mark << "(none)" << false;
        QTest::newRow("mark, no group") << mark + "jiraEmail=ann\n"
                                        << "ann" << false;
        QTest::newRow("mark and damage") << mark + sound + "no setting\n"
                                         << "ann" << true;
        QTest::newRow("no setting") << sound + "this is no setting\n\xff\xfe"
                                    << "ann" << true;
        QTest::newRow("not UTF-8")
            << QByteArray("[General]\njiraEmail=J\xfcrgen\n") << u"J\uFFFDrgen"_s << true;
        QTest::newRow("not UTF-8, another key") << sound + "l=\xfc\n"
                                                << "ann" << true;
        QTest::newRow("half a character at the end") << sound + "l=\xc3"
                                                     << "ann" << true;
        // Pieces are variants as soon as one of them begins with "@".
        QTest::newRow("number in pieces")
            << QByteArray("jiraEmail=@Variant(\\0\\0\\0\\x2\\0\\0\\0\\a), a\n") << "7, a" << false;
        QTest::newRow("a pair") << QByteArray("jiraEmail=\\xd83d\\xdc1e\n") << "🐞" << false;
        QTest::newRow("half a pair") << QByteArray("jiraEmail=a\\xdddd\n") << u"a\uFFFD"_s << true;
        QTest::newRow("half a pair in pieces")
            << QByteArray("jiraEmail=a\\xd83d, \\xdc1e\n") << u"a\uFFFD, \uFFFD"_s << true;
    }
    /// What can't be read is told of and kept aside, and the rest stays as it was read.
    void damage() {
        QFETCH(QByteArray, content);
        QFETCH(QString, email);
        QFETCH(bool, isDamaged);
        write(m_path, content);
        SettingsFile file(m_path);
        listen(file);
        QCOMPARE(m_problems.value(0, "none").startsWith("the settings file is damaged"), isDamaged);
        QCOMPARE(file.string("jiraEmail").value_or("(none)"), email);
        QCOMPARE(contentOf(m_path), content);
        file.set("commentEmoji", "x");
        file.flush();
        QCOMPARE(contentOf(m_path + ".damaged"), isDamaged ? content : "(unreadable)");
        QCOMPARE(m_problems.size(), isDamaged ? 2 : 0);
        const SettingsFile again(copyOf(m_path));
        QCOMPARE(again.string("jiraEmail").value_or("(none)"), email);
        QCOMPARE(again.string("commentEmoji"), QString("x"));
    }

    void damageDoneMeanwhileIsKeptAside() {
        SettingsFile file(m_path);
        listen(file);
        write(m_path, "jiraEmail=J\xfcrgen\n"); // by an editor
        file.set("commentEmoji", "x");
        file.flush();
        QCOMPARE(contentOf(m_path + ".damaged"), "jiraEmail=J\xfcrgen\n");
        QCOMPARE(m_problems, QStringList("the damaged settings file was kept as b.conf.damaged"));
    }

    void nothingIsWrittenBeforeTheFlush() {
        SettingsFile file(m_path);
        file.set("k", "v");
        file.set("gone", "v");
        file.remove("gone");
        QCOMPARE(file.string("k"), QString("v"));
        QCoreApplication::processEvents();
        QVERIFY(!QFile::exists(m_path));
        file.flush();
        QCOMPARE(contentOf(m_path), "[General]\nk=v\n");
        QFile::remove(m_path);
        file.flush(); // has nothing new
        QVERIFY(!QFile::exists(m_path));
    }

    void unreadableFileGivesDefaultsAndAProblem() {
        QVERIFY(QDir().mkpath(m_path)); // a folder where the file should be
        SettingsFile file(m_path);
        listen(file);
        QCOMPARE(m_problems.size(), 1);
        QVERIFY(!file.string("k"));
        file.set("k", "v");
        file.flush();
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
        file.flush();
        setrlimit(RLIMIT_FSIZE, &usual);
        std::signal(SIGXFSZ, handler);
        QCOMPARE(m_problems.size(), 1);
        QCOMPARE(file.string("k"), QString("new"));
        QCOMPARE(contentOf(m_path), before);
        file.set("k", "newer");
        file.flush();
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

    /// The toolkit keeps what it read under a name.
    static QString copyOf(const QString &path) {
        QFile::copy(path, path + ".copy");
        return path + ".copy";
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
    QStringList m_problems;
};

QTEST_GUILESS_MAIN(TestFiles)
#include "test_platform_files.moc"
