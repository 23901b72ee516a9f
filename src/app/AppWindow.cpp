#include "app/AppWindow.h"

#include "app/ActivationToken.h"
#include "app/EditMenu.h"
#include "app/FittedView.h"
#include "model/AppInfo.h"

#include <QGuiApplication>
#include <QLayout>
#include <QMenuBar>
#include <QScreen>

#include <algorithm>

namespace {

/// On Wayland a window comes to the front by a token, the toolkit asks for one where another window
/// of ours has the focus, and without either nothing happens at all. A new window does come up.
bool comesUpOnlyAnew() {
    return QGuiApplication::platformName().startsWith(QLatin1String("wayland")) &&
           !ActivationToken::isThere() && !QGuiApplication::focusWindow();
}

} // namespace

AppWindow::AppWindow(const QString &title, QWidget *view, const MenuActions &actions) {
    setWindowTitle(title);
    setCentralWidget(view);
    addApplicationMenu(actions);
    menuBar()->addMenu(new EditMenu(this));
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

void AppWindow::fixSize() {
    setCentralWidget(new FittedView(takeCentralWidget()));
    menuBar()->raise(); // after the content, in the order in which assistive programs read
    layout()->setSizeConstraint(QLayout::SetFixedSize);
}

void AppWindow::present() {
    if (!m_wasPlaced) {
        m_wasPlaced = true;
        adjustSize();
        const QRect room = FittedView::roomFor(*this);
        const QPoint corner = room.center() - rect().center();
        const QPoint frame = room.topLeft() - screen()->availableGeometry().topLeft();
        // Where it is too large all the same, its title stays to be seen.
        move(std::max(corner.x(), room.left()) - frame.x(),
             std::max(corner.y(), room.top()) - frame.y());
    }
    if (isVisible() && comesUpOnlyAnew())
        hide();
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}
