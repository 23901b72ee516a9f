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
    Sidebar() { settleWidth(); }

protected:
    bool event(QEvent *event) override {
        if (event->type() == QEvent::ApplicationFontChange)
            settleWidth();
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
    void settleWidth() {
        setMinimumWidth(Style::scaled(sidebarLeast));
        setMaximumWidth(Style::scaled(sidebarGreatest));
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
    auto *page = new QScrollArea;
    page->setFrameShape(QFrame::NoFrame);
    page->setWidgetResizable(true);
    page->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    page->setFocusPolicy(Qt::NoFocus);
    new SlimScrollBar(page);
    auto *content = new QWidget;
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins(Style::panePadding, Style::panePadding, Style::panePadding,
                               Style::panePadding);
    column->addWidget(makeTab(tab));
    content->resize(page->size()); // or it would be measured for a size that it never gets
    page->setWidget(content);
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
