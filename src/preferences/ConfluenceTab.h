#pragma once

#include <QWidget>

class ConfluencePreviewSource;

/// The tab of the Confluence template and its preview. Main thread only.
class ConfluenceTab : public QWidget {
    Q_OBJECT

public:
    /// `preview` must outlive the tab.
    explicit ConfluenceTab(ConfluencePreviewSource &preview, QWidget *parent = nullptr);
};
