#pragma once

#include "preferences/PreferencesTab.h"
#include "preferences/template/TemplatePreviewSource.h"

#include <QHash>
#include <QStackedWidget>
#include <QWidget>

class QAbstractButton;

/// The content of the preferences window: a sidebar with the tabs, and the one selected. It is made
/// once and kept; each tab is made when it is first selected. Every control edits the settings at
/// once. Main thread only.
class PreferencesView : public QWidget {
    Q_OBJECT

public:
    explicit PreferencesView(QWidget *parent = nullptr);

    PreferencesTab selectedTab() const { return m_selected; }
    void selectTab(PreferencesTab tab);

    QSize sizeHint() const override;

protected:
    bool event(QEvent *event) override;

private:
    QWidget *makeSidebar();
    QWidget *pageOf(PreferencesTab tab);
    QWidget *makeTab(PreferencesTab tab);

    JiraPreviewSource m_jiraPreview;
    ConfluencePreviewSource m_confluencePreview;
    QStackedWidget *m_detail;
    QHash<PreferencesTab, QWidget *> m_pages;
    QHash<PreferencesTab, QAbstractButton *> m_rows;
    PreferencesTab m_selected = PreferencesTab::General;
};
