#include "app/StatusIcon.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

namespace {

QImage picture(const QIcon &icon) {
    return icon.pixmap(48).toImage();
}

/// The strongest pixel, of 255.
int strength(const QImage &image) {
    int most = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            most = std::max(most, qAlpha(image.pixel(x, y)));
    }
    return most;
}

} // namespace

class TestAppIcon : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { qputenv("XDG_DATA_HOME", m_folder.path().toUtf8() + "/none"); }

    void dimsWhileFetching() {
        StatusIcon icon;
        for (const bool isAging : {false, true}) {
            QCOMPARE(strength(picture(icon.icon(isAging, false))), 255);
            const int faint = strength(picture(icon.icon(isAging, true)));
            QVERIFY2(std::abs(faint - 255 * 0.4) <= 2, qPrintable(QString::number(faint)));
        }
    }

    void badgeComesAndGoesWithTheTokensAge() {
        StatusIcon icon;
        const QImage plain = picture(icon.icon(false, false));
        const QString title = icon.description();
        const QImage badged = picture(icon.icon(true, false));
        QVERIFY(badged != plain);
        // In the corner at the bottom right; what is above it is as it was.
        QCOMPARE(badged.copy(0, 0, 48, 16), plain.copy(0, 0, 48, 16));
        QCOMPARE(icon.description(), "Brindle — token rotation suggested");
        QCOMPARE(picture(icon.icon(false, false)), plain);
        QCOMPARE(icon.description(), title);
        QCOMPARE(title, "Brindle");
    }

    void isBuiltOnceForEachState() {
        StatusIcon icon;
        const qint64 first = icon.icon(false, false).cacheKey();
        icon.icon(false, true);
        QCOMPARE(icon.icon(false, false).cacheKey(), first);
    }

    void namesTheSymbolicIconWhereItIsInstalled_data() {
        QTest::addColumn<bool>("isAging");
        QTest::addColumn<bool>("isFetching");
        QTest::addColumn<QString>("name");
        QTest::newRow("plain") << false << false << "org.ostrowind.brindle-symbolic";
        QTest::newRow("dimmed") << false << true << "org.ostrowind.brindle-dimmed-symbolic";
        QTest::newRow("aging") << true << false << "org.ostrowind.brindle-aging-symbolic";
        QTest::newRow("both") << true << true << "org.ostrowind.brindle-aging-dimmed-symbolic";
    }

    void namesTheSymbolicIconWhereItIsInstalled() {
        QFETCH(bool, isAging);
        QFETCH(bool, isFetching);
        QFETCH(QString, name);
        QCOMPARE(StatusIcon().icon(isAging, isFetching).name(), QString());
        // As the installation has it.
        const QString folder = m_folder.path() + "/icons/hicolor/symbolic/apps/";
        QVERIFY(QDir().mkpath(folder));
        QVERIFY(QFile::exists(folder + name + ".svg") ||
                QFile::copy(SYMBOLIC_ICONS "/" + name + ".svg", folder + name + ".svg"));
        const QImage drawn = picture(StatusIcon().icon(isAging, isFetching));
        qputenv("XDG_DATA_HOME", m_folder.path().toUtf8());
        StatusIcon icon;
        QCOMPARE(icon.icon(isAging, isFetching).name(), name);
        QCOMPARE(picture(icon.icon(isAging, isFetching)), drawn);
        QVERIFY(!icon.icon(isAging, isFetching).availableSizes().isEmpty());
    }

private:
    QTemporaryDir m_folder;
};

int main(int argc, char *argv[]) {
    Q_INIT_RESOURCE(resources);
    qputenv("XDG_DATA_DIRS", "/nonexistent");
    QGuiApplication application(argc, argv);
    TestAppIcon test;
    return QTest::qExec(&test, argc, argv);
}
#include "test_app_icon.moc"
