#pragma once

#include "preferences/template/TemplatePreviewSource.h"

#include <QString>
#include <QWidget>

class BorderedField;
class Button;
class QLabel;
class QLayout;

/// Marked text as rich text for a label: emphasis as the markers say, everything else to the
/// letter. Pure.
QString styledMarked(const QString &marked);

/// A template as it would come out: header, box, error and a row to fetch something real. Shows
/// its source, which must outlive it. Main thread only.
class TemplatePreview : public QWidget {
    Q_OBJECT

protected:
    /// What the row to fetch with looks like.
    struct FetchRow {
        QString title;
        QString prompt;
        int fieldWidth;
        bool isMonospaced;
    };

    /// `choice` stands between header and box; null for none.
    TemplatePreview(PreviewSource &source, const FetchRow &row, QWidget *choice, QWidget *parent);

private:
    QLayout *header();
    QLayout *fetchRow(const FetchRow &row);
    void refresh();

    PreviewSource &m_source;
    QLabel *m_caption = nullptr;
    QLabel *m_box = nullptr;
    QLabel *m_error = nullptr;
    BorderedField *m_input = nullptr;
    Button *m_fetch = nullptr;
    Button *m_clear = nullptr;
};

/// The preview under the Jira template, with a choice of sample.
class JiraTemplatePreview : public TemplatePreview {
    Q_OBJECT

public:
    explicit JiraTemplatePreview(JiraPreviewSource &source, QWidget *parent = nullptr);
};

/// The preview under the Confluence template.
class ConfluenceTemplatePreview : public TemplatePreview {
    Q_OBJECT

public:
    explicit ConfluenceTemplatePreview(ConfluencePreviewSource &source, QWidget *parent = nullptr);
};
