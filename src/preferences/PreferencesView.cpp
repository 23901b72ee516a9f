#include "preferences/PreferencesView.h"

#include "preferences/ConfluenceTab.h"
#include "preferences/GeneralTab.h"
#include "preferences/IdLinksTab.h"
#include "preferences/JiraTab.h"
#include "preferences/SettingsBinding.h"
#include "preferences/SidebarRow.h"
#include "preferences/connection/ConnectionTab.h"
#include "preferences/kit/AccessibleRole.h"
#include "preferences/kit/SlimScrollBar.h"
#include "preferences/kit/Style.h"

#include <QEvent>
#include <QPainter>
#include <QScrollArea>
#include <QSplitter>
#include <QVBoxLayout>

namespace {

constexpr int viewWidth = 720;
constexpr int viewHeight = 520;
constexpr int sidebarLeast = 205;
constexpr int sidebarIdeal = 220;
constexpr int sidebarGreatest = 250;

/// The sidebar's ground, a shade away from that of the tabs.
class Sidebar : public QWidget {
public:
    Sidebar() { limitWidth(); }

    /// Its rows still fit in when the tabs need room more than it does.
    QSize minimumSizeHint() const override {
        return layout()->minimumSize().expandedTo({sidebarLeast, 0});
    }

protected:
    bool event(QEvent *event) override {
        if (event->type() == QEvent::ApplicationFontChange)
            limitWidth();
        return QWidget::event(event);
    }

    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        QColor shade = palette().color(QPalette::WindowText);
        shade.setAlphaF(0.045F);
        painter.fillRect(rect(), shade);
        painter.fillRect(QRect(width() - 1, 0, 1, height()),
                         Style::colour(Style::ColourRole::BoxStroke, palette()));
    }

private:
    void limitWidth() { setMaximumWidth(Style::scaled(sidebarGreatest)); }
};

/// The ground that a tab scrolls on, at least as wide as the tab can be.
class Page : public QScrollArea {
public:
    explicit Page(QWidget *content) {
        setFrameShape(QFrame::NoFrame);
        setWidgetResizable(true);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setFocusPolicy(Qt::NoFocus);
        new SlimScrollBar(this);
        content->resize(size()); // or it would be measured for a size that it never gets
        setWidget(content);
    }

    QSize minimumSizeHint() const override {
        const QSize least = QScrollArea::minimumSizeHint();
        return {widget()->minimumSizeHint().width(), least.height()};
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override {
        if (watched == widget() && event->type() == QEvent::LayoutRequest)
            updateGeometry();
        return QScrollArea::eventFilter(watched, event);
    }
};

} // namespace

PreferencesView::PreferencesView(QWidget *parent) : QWidget(parent), m_detail(new QStackedWidget) {
    auto *split = new QSplitter;
    split->setChildrenCollapsible(false);
    split->setHandleWidth(1);
    split->addWidget(makeSidebar());
    split->addWidget(m_detail);
    // The order in which assistive programs read; the handle reaches over its neighbours.
    m_detail->raise();
    split->handle(1)->raise();
    split->setStretchFactor(1, 1);
    split->setSizes({Style::scaled(sidebarIdeal), Style::scaled(viewWidth - sidebarIdeal)});
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(split);
    resize(sizeHint());
    selectTab(PreferencesTab::General);
    storeWhenFieldsAreLeft(this);
}

QSize PreferencesView::sizeHint() const {
    return {Style::scaled(viewWidth), Style::scaled(viewHeight)};
}

QWidget *PreferencesView::makeSidebar() {
    auto *sidebar = new Sidebar;
    sidebar->setAccessibleName(QStringLiteral("Tabs"));
    setAccessibleRole(sidebar, QAccessible::PageTabList);
    auto *column = new QVBoxLayout(sidebar);
    column->setContentsMargins(10, 12, 10, 12);
    column->setSpacing(2);
    for (const PreferencesTab tab : PreferencesTabs::allCases) {
        auto *row = new SidebarRow(tab);
        // The arrow keys select as they move, without a click.
        connect(row, &SidebarRow::toggled, this, [this, tab](bool on) {
            if (on)
                selectTab(tab);
        });
        column->addWidget(row);
        m_rows.insert(tab, row);
    }
    column->addStretch();
    return sidebar;
}

void PreferencesView::selectTab(PreferencesTab tab) {
    m_selected = tab;
    m_rows.value(tab)->setChecked(true);
    m_detail->setCurrentWidget(pageOf(tab));
}

QWidget *PreferencesView::pageOf(PreferencesTab tab) {
    if (QWidget *page = m_pages.value(tab))
        return page;
    auto *content = new QWidget;
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins(Style::panePadding, Style::panePadding, Style::panePadding,
                               Style::panePadding);
    column->addWidget(makeTab(tab));
    auto *page = new Page(content);
    m_detail->addWidget(page);
    m_pages.insert(tab, page);
    return page;
}

QWidget *PreferencesView::makeTab(PreferencesTab tab) {
    switch (tab) {
    case PreferencesTab::General:
        return new GeneralTab(m_jiraPreview);
    case PreferencesTab::Jira:
        return new JiraTab(m_jiraPreview);
    case PreferencesTab::Confluence:
        return new ConfluenceTab(m_confluencePreview);
    case PreferencesTab::Account:
        return new IdLinksTab;
    case PreferencesTab::Connection:
        return new ConnectionTab;
    }
    return new QWidget;
}

bool PreferencesView::event(QEvent *event) {
    if (event->type() == QEvent::ApplicationFontChange)
        updateGeometry();
    return QWidget::event(event);
}
