#include "app/Application.h"
#include "app/ApplicationService.h"
#include "app/FittedView.h"
#include "fakes/FakePlatform.h"
#include "preferences/PreferencesView.h"
#include "storage/Settings.h"

#include <QApplication>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QTextEdit>

namespace {

AppWindow *window(const QString &title) {
    for (QWidget *found : QApplication::topLevelWidgets()) {
        if (found->windowTitle() == title)
            return qobject_cast<AppWindow *>(found);
    }
    return nullptr;
}

/// Opens the window through the status menu.
AppWindow *open(const QString &entry, const QString &title) {
    for (QWidget *menu : QApplication::topLevelWidgets()) {
        for (QAction *action : menu->actions()) {
            if (action->text() == entry)
                action->trigger();
        }
    }
    const bool isThere =
        QTest::qWaitFor([&] { return window(title) && window(title)->isVisible(); });
    return isThere ? window(title) : nullptr;
}

/// A user with an address and a token, and the application, launched.
struct Launched {
    Launched() {
        platform.secretStore->secrets = {{"org.ostrowind.brindle/jira-api-token", "x"}};
        Settings::shared().email = "ann@h.example";
        application = std::make_unique<Application>();
        application->finishLaunching();
        platform.dispatch->drain();
    }
    AppWindow *settings() { return open("Preferences…", "Settings"); }
    AppWindow *logs() { return open("View Logs…", "Brindle Logs"); }

    FakePlatform platform;
    std::unique_ptr<Application> application;
};

} // namespace

class TestAppWindows : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QApplication::setFont(m_font); }

    void launchShowsNothing() {
        const Launched launched;
        QVERIFY(!window("Settings"));
        QVERIFY(launched.platform.notifications->shown.isEmpty());
    }

    void windowsAreKeptAndComeBack() {
        Launched launched;
        AppWindow *settings = launched.settings();
        QVERIFY(settings);
        settings->move(17, 23);
        settings->showMinimized();
        QTRY_VERIFY(settings->isMinimized());
        QCOMPARE(launched.settings(), settings);
        QTRY_VERIFY(!settings->isMinimized() && settings->isActiveWindow());
        QCOMPARE(settings->pos(), QPoint(17, 23));
        settings->close();
        QVERIFY(!settings->isVisible());
        QCOMPARE(launched.settings(), settings);
        QVERIFY(settings->isVisible());
    }

    void aLaunchersTokenIsInForceForItsCallAlone() {
        const FakePlatform platform;
        QStringList tokens;
        const auto note = [&] { tokens.append(qEnvironmentVariable("XDG_ACTIVATION_TOKEN")); };
        ApplicationService service(note, {{"logs", note}});
        const QList<std::pair<QVariantMap, QString>> cases{
            {{{"activation-token", "a"}}, "a"},
            {{{"desktop-startup-id", "b"}}, "b"},
            {{{"activation-token", "c"}, {"desktop-startup-id", "b"}}, "c"},
            {{}, ""}};
        for (const auto &[platformData, token] : cases) {
            service.Activate(platformData);
            service.ActivateAction("logs", {}, platformData);
            QVERIFY(tokens.isEmpty()); // the caller has its answer first
            platform.dispatch->drain();
            QCOMPARE(tokens, QStringList({token, token}));
            QVERIFY(!qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
            tokens.clear();
        }
    }

    void onlyTheLogWindowIsResizable() {
        Launched launched;
        AppWindow *settings = launched.settings();
        QCOMPARE(settings->minimumSize(), settings->maximumSize());
        AppWindow *logs = launched.logs();
        QCOMPARE(logs->maximumSize(), QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
        const QSize larger = logs->size() + QSize(10, 10);
        logs->resize(larger);
        QCOMPARE(logs->size(), larger);
    }

    void hideHidesBoth() {
        Launched launched;
        AppWindow *settings = launched.settings();
        AppWindow *logs = launched.logs();
        for (AppWindow *from : {settings, logs}) {
            launched.settings();
            launched.logs();
            QAction *hide = from->menuBar()->actions()[0]->menu()->actions()[2];
            QCOMPARE(hide->text(), "Hide Brindle");
            hide->trigger();
            QVERIFY(!settings->isVisible());
            QVERIFY(!logs->isVisible());
        }
    }

    void logWindowStartsAtTheList() {
        Launched launched;
        for (int time = 0; time < 2; ++time) {
            AppWindow *logs = launched.logs();
            QVERIFY(QTest::qWaitForWindowActive(logs));
            QVERIFY(qobject_cast<QTextEdit *>(QApplication::focusWidget()));
            logs->findChild<QPushButton *>()->setFocus(); // the next time it is opened as well
            logs->close();
        }
    }

    void preferencesFitASmallScreen_data() {
        QTest::addColumn<int>("textSize"); // in pixels
        QTest::newRow("usual text") << 14;
        QTest::newRow("large text") << 21;
        QTest::newRow("very large text") << 28;
    }

    void preferencesFitASmallScreen() {
        QFETCH(int, textSize);
        QFont font = m_font;
        font.setPixelSize(textSize);
        QApplication::setFont(font);
        Launched launched;
        AppWindow *settings = launched.settings();
        QVERIFY(QTest::qWaitForWindowExposed(settings));
        const QRect screen = settings->screen()->availableGeometry();
        QVERIFY(screen.height() < 520); // what they ask for
        QTRY_VERIFY2(screen.contains(settings->frameGeometry()),
                     qPrintable(QString("%1x%2 at %3,%4")
                                    .arg(settings->frameGeometry().width())
                                    .arg(settings->frameGeometry().height())
                                    .arg(settings->frameGeometry().x())
                                    .arg(settings->frameGeometry().y())));
        // The view is never squeezed: what does not fit is scrolled.
        const auto *view = settings->findChild<PreferencesView *>();
        const auto *fitted = settings->findChild<FittedView *>();
        QVERIFY(view->height() >= view->minimumSizeHint().height());
        QVERIFY(view->width() >= fitted->viewport()->width());
    }

    void preferencesFollowTheSizeOfText() {
        Launched launched;
        AppWindow *settings = launched.settings();
        QVERIFY(QTest::qWaitForWindowExposed(settings));
        const int before = settings->width();
        QFont font = m_font;
        font.setPixelSize(15);
        QApplication::setFont(font);
        QTRY_VERIFY(settings->width() > before);
    }

private:
    const QFont m_font = QApplication::font();
};

QTEST_MAIN(TestAppWindows)
#include "test_app_windows.moc"
