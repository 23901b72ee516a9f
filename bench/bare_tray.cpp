// What a program in the status area costs at least: an icon with a menu. With BARE_TRAY_CONNECTED
// it also has ready what Brindle needs for its work, the session bus and the network.

#include <QApplication>
#include <QMenu>
#include <QSystemTrayIcon>

#ifdef BARE_TRAY_CONNECTED
#include <QDBusConnection>
#include <QNetworkAccessManager>
#endif

int main(int argc, char **argv) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
#ifdef BARE_TRAY_CONNECTED
    QNetworkAccessManager network;
    if (!QDBusConnection::sessionBus().isConnected())
        return 1;
#endif
    QPixmap art(64, 64);
    art.fill(Qt::darkCyan);
    QMenu menu;
    menu.addAction(QStringLiteral("Quit"), &application, &QCoreApplication::quit);
    QSystemTrayIcon icon(art);
    icon.setToolTip(QStringLiteral("Bare"));
    icon.setContextMenu(&menu);
    icon.show();
    return QApplication::exec();
}
