#include "app/AppWindow.h"

#include "model/AppInfo.h"

#include <QApplication>
#include <QMenuBar>
#include <QScreen>
#include <QVBoxLayout>

AppWindow::AppWindow(const QString &title, QWidget *view, const MenuActions &actions) {
    setWindowTitle(title);
    setWindowIcon(QIcon(QStringLiteral(":/icons/%1.png").arg(AppInfo::bundleIdentifier())));
    setCentralWidget(view);
    addApplicationMenu(actions);
    addEditMenu();
}

void AppWindow::addApplicationMenu(const MenuActions &actions) {
    QMenu *menu = menuBar()->addMenu(AppInfo::displayName());
    connect(menu->addAction(QStringLiteral("Check for Updates…")), &QAction::triggered, this,
            actions.checkForUpdates);
    menu->addSeparator();
    QAction *hideAll = menu->addAction(QStringLiteral("Hide Brindle"));
    hideAll->setShortcut(QKeySequence(QStringLiteral("Ctrl+H")));
    connect(hideAll, &QAction::triggered, this, actions.hide);
    menu->addSeparator();
    QAction *quit = menu->addAction(QStringLiteral("Quit Brindle"));
    quit->setShortcut(QKeySequence(QStringLiteral("Ctrl+Q")));
    connect(quit, &QAction::triggered, this, actions.quit);
}

void AppWindow::addEditMenu() {
    struct Entry {
        const char16_t *title; ///< null for a separator
        const char16_t *shortcut;
        const char *slot; ///< as every text widget names it
    };
    static constexpr Entry entries[] = {
        {u"Undo", u"Ctrl+Z", "undo"},
        {u"Redo", u"Ctrl+Shift+Z", "redo"},
        {nullptr, nullptr, nullptr},
        {u"Cut", u"Ctrl+X", "cut"},
        {u"Copy", u"Ctrl+C", "copy"},
        {u"Paste", u"Ctrl+V", "paste"},
        {u"Select All", u"Ctrl+A", "selectAll"},
    };
    QMenu *menu = menuBar()->addMenu(QStringLiteral("Edit"));
    for (const Entry &entry : entries) {
        if (!entry.title) {
            menu->addSeparator();
            continue;
        }
        QAction *action = menu->addAction(QString::fromUtf16(entry.title));
        action->setShortcut(QKeySequence(QString::fromUtf16(entry.shortcut)));
        connect(action, &QAction::triggered, this, [slot = entry.slot] {
            QWidget *focused = QApplication::focusWidget();
            if (focused && focused->metaObject()->indexOfSlot(QByteArray(slot) + "()") >= 0)
                QMetaObject::invokeMethod(focused, slot);
        });
    }
}

void AppWindow::fixSize() {
    layout()->setSizeConstraint(QLayout::SetFixedSize);
}

void AppWindow::present() {
    if (!m_wasPlaced) {
        m_wasPlaced = true;
        adjustSize();
        const QRect free = screen()->availableGeometry();
        move(free.center() - rect().center());
    }
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}
