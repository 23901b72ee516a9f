#include "platform/linux/AccessibleFocus.h"
#include "platform/linux/DBusNotifications.h"
#include "stage/NotificationLog.h"
#include "stage/VirtualDesktop.h"

#include <QElapsedTimer>
#include <QTest>

using namespace std::chrono_literals;

/// The services of a desktop. The session bus of a process is fixed once used, so all of them share
/// one desktop.
class TestServices : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        m_desktop = std::make_unique<VirtualDesktop>(DesktopOptions{.notifications = true});
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
        m_desktop->join();
    }

    void cleanupTestCase() { m_desktop.reset(); }

    void notificationTextIsShownAsItIs() {
        const NotificationLog shown(m_desktop->busAddress());
        QVERIFY2(shown.problem().isEmpty(), qPrintable(shown.problem()));
        DBusNotifications notifications;
        QStringList failures;
        const auto failed = [&](const QString &reason) { failures.append(reason); };
        notifications.show("Brindle", "a <b> & \"c\" é 🐞", failed);
        QVERIFY(shown.waitForAccepted(1));
        const auto first = shown.notifications().constFirst();
        QCOMPARE(first.application, "Brindle");
        QCOMPARE(first.title, "Brindle");
        QCOMPARE(first.body, "a &lt;b&gt; &amp; \"c\" é 🐞"); // this server takes markup
        QVERIFY(failures.isEmpty());
    }

    // Last: the bus goes away with the desktop.
    void withoutTheServicesNothingHangs() {
        m_desktop.reset();
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!AccessibleFocus::isPasswordField(1s));
        DBusNotifications notifications;
        QString failure;
        notifications.show("t", "b", [&](const QString &reason) { failure = reason; });
        QVERIFY(waitFor([&] { return !failure.isEmpty(); }));
        QVERIFY2(timer.elapsed() < 15000, qPrintable(QString::number(timer.elapsed())));
    }

private:
    std::unique_ptr<VirtualDesktop> m_desktop;
};

QTEST_MAIN(TestServices)
#include "test_platform_services.moc"
