#include "platform/linux/AutostartEntry.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using Status = LoginItems::Status;
Q_DECLARE_METATYPE(LoginItems::Status)

class TestAutostart : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_home = std::make_unique<QTemporaryDir>();
        qputenv("XDG_CONFIG_HOME", m_home->path().toLocal8Bit());
        m_path = m_home->filePath("autostart/org.ostrowind.brindle.desktop");
    }

    void entryIsAddedAndRemoved() {
        AutostartEntry entry;
        QCOMPARE(entry.status(), Status::NotRegistered);
        QCOMPARE(entry.remove(), QString());
        QCOMPARE(entry.add(), QString());
        QCOMPARE(entry.status(), Status::Enabled);
        QVERIFY(content().contains("Exec=\"" + QCoreApplication::applicationFilePath().toUtf8()));
        QCOMPARE(entry.add(), QString()); // our own may be replaced
        QCOMPARE(entry.remove(), QString());
        QVERIFY(!QFile::exists(m_path));
    }

    void status_data() {
        QTest::addColumn<QByteArray>("lines");
        QTest::addColumn<Status>("status");
        QTest::newRow("plain") << QByteArray("TryExec=/bin/sh\n") << Status::Enabled;
        QTest::newRow("hidden") << QByteArray("Hidden=true\n") << Status::RequiresApproval;
        QTest::newRow("switched off by a session manager")
            << QByteArray("X-GNOME-Autostart-enabled=false\n") << Status::RequiresApproval;
        QTest::newRow("program gone")
            << QByteArray("TryExec=/nowhere/brindle\nHidden=true\n") << Status::NotFound;
        QTest::newRow("key of another group")
            << QByteArray("[Desktop Action x]\nHidden=true\n") << Status::Enabled;
    }

    void status() {
        QFETCH(QByteArray, lines);
        write("[Desktop Entry]\n" + lines);
        QTEST(AutostartEntry().status(), "status");
    }

    void foreignEntryIsNeverTouched() {
        const QByteArray foreign = "[Desktop Entry]\nExec=other\n";
        write(foreign);
        AutostartEntry entry;
        QVERIFY(!entry.add().isEmpty());
        QVERIFY(!entry.remove().isEmpty());
        QCOMPARE(content(), foreign);
    }

    void folderThatCannotBeMadeIsAFailure() {
        QFile file(m_home->filePath("autostart"));
        QVERIFY(file.open(QFile::WriteOnly));
        QVERIFY(!AutostartEntry().add().isEmpty());
    }

private:
    void write(const QByteArray &text) {
        QVERIFY(QDir().mkpath(QFileInfo(m_path).path()));
        QFile file(m_path);
        QVERIFY(file.open(QFile::WriteOnly));
        file.write(text);
    }

    QByteArray content() {
        QFile file(m_path);
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<QTemporaryDir> m_home;
    QString m_path;
};

QTEST_GUILESS_MAIN(TestAutostart)
#include "test_platform_autostart.moc"
