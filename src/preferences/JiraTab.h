#pragma once

#include <QWidget>

class JiraPreviewSource;

/// The tab of the Jira template, its preview and the emoji table. Main thread only.
class JiraTab : public QWidget {
    Q_OBJECT

public:
    /// `preview` must outlive the tab.
    explicit JiraTab(JiraPreviewSource &preview, QWidget *parent = nullptr);
};
