// What a window that opens on a call over the bus costs at least: one as large as the preferences,
// empty but for a patch in the accent colour where they have one, by which it is seen. With an
// argument it writes that into the window, so that it also has a font to load.

#include <QApplication>
#include <QDBusConnection>
#include <QMainWindow>
#include <QPainter>
#include <QScreen>
#include <QVariantMap>

namespace {

class Empty : public QWidget {
public:
    Empty() { setFixedSize(720, 520); }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.fillRect(10, 12, 200, 50, palette().highlight());
        const QString text = QCoreApplication::arguments().value(1);
        if (!text.isEmpty())
            painter.drawText(230, 40, text);
    }
};

} // namespace

class BareWindow : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public Q_SLOTS:
    void ActivateAction(const QString &action, const QVariantList &, const QVariantMap &) {
        if (action != QStringLiteral("preferences"))
            return;
        auto *window = new QMainWindow;
        window->setCentralWidget(new Empty);
        window->adjustSize();
        const QRect free = window->screen()->availableGeometry();
        window->move(free.center() - window->rect().center());
        window->show();
    }
};

int main(int argc, char **argv) {
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    BareWindow window;
    QDBusConnection bus = QDBusConnection::sessionBus();
    const bool isThere = bus.registerObject(QStringLiteral("/org/ostrowind/brindle"), &window,
                                            QDBusConnection::ExportAllSlots) &&
                         bus.registerService(QStringLiteral("org.ostrowind.brindle"));
    return isThere ? QApplication::exec() : 1;
}

#include "bare_window.moc"
