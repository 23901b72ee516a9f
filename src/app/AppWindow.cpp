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
#include <chrono>

namespace {

using namespace std::chrono_literals;

/// How long the compositor's answer to an activation, or its word that another program has had the
/// focus all along, may be on its way.
constexpr auto longestAnswer = 250ms;

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
    m_lookAgain.setSingleShot(true);
    connect(&m_lookAgain, &QTimer::timeout, this, [this] {
        if (isVisible() && comesUpOnlyAnew()) {
            hide();
            comeUp();
        }
    });
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
    const bool wasVisible = isVisible();
    if (wasVisible && comesUpOnlyAnew())
        hide();
    else if (wasVisible)
        m_lookAgain.start(longestAnswer);
    comeUp();
}

void AppWindow::comeUp() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}
