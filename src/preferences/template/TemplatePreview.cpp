#include "preferences/template/TemplatePreview.h"

#include "model/MarkedText.h"
#include "model/Text.h"
#include "preferences/kit/BorderedField.h"
#include "preferences/kit/Button.h"
#include "preferences/kit/Labels.h"
#include "preferences/kit/SegmentedPicker.h"
#include "preferences/kit/SelectableLabel.h"
#include "preferences/kit/Style.h"

#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

/// The rendered text in its rounded box.
class PreviewBox : public SelectableLabel {
public:
    PreviewBox() : SelectableLabel(Qt::RichText) {
        constexpr int leastTextHeight = 26;
        setRingRadius(Style::boxRadius);
        setAlignment(Qt::AlignTop | Qt::AlignLeft);
        setMargin(Style::boxPadding);
        setMinimumHeight(Style::scaled(leastTextHeight) + 2 * Style::boxPadding);
        setAccessibleDescription(u"Preview"_s);
        Style::dress(this, Style::TextRole::Body);
    }

protected:
    void paintEvent(QPaintEvent *event) override {
        {
            using Style::ColourRole;
            QPainter painter(this);
            Style::paintBox(painter, rect(), Style::boxRadius,
                            Style::colour(ColourRole::FieldFill, palette()),
                            Style::colour(ColourRole::BoxStroke, palette()));
        }
        SelectableLabel::paintEvent(event);
    }
};

QWidget *samplePicker(JiraPreviewSource &source) {
    auto *picker = new SegmentedPicker(u"Sample type"_s, {u"Issue link"_s, u"Comment link"_s});
    picker->setCurrent(source.sampleShowsComment() ? 1 : 0);
    QObject::connect(picker, &SegmentedPicker::picked, &source,
                     [&source](int item) { source.setSampleShowsComment(item == 1); });
    return picker;
}

} // namespace

QString styledMarked(const QString &marked) {
    QString html = u"<span style=\"white-space:pre-wrap\">"_s;
    const AttributedText text = Enrichment::attributedFromMarked(marked);
    for (const AttributedText::Run &run : text.runs()) {
        QString part = run.text.toHtmlEscaped();
        if (run.italic)
            part = u"<i>"_s + part + u"</i>"_s;
        if (run.bold)
            part = u"<b>"_s + part + u"</b>"_s;
        html += part;
    }
    return html + u"</span>"_s;
}

TemplatePreview::TemplatePreview(PreviewSource &source, const FetchRow &row, QWidget *choice,
                                 QWidget *parent)
    : QWidget(parent),
      m_source(source),
      m_box(new PreviewBox),
      m_error(new SelectableLabel(Qt::PlainText)) {
    Style::dress(m_error, Style::TextRole::Caption, Style::ColourRole::Warning);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Style::tightSpacing);
    column->addLayout(header());
    if (choice)
        column->addWidget(choice, 0, Qt::AlignLeft);
    column->addWidget(m_box);
    column->addWidget(m_error);
    column->addLayout(fetchRow(row));
    connect(&m_source, &PreviewSource::changed, this, &TemplatePreview::refresh);
    refresh();
}

QLayout *TemplatePreview::header() {
    m_caption = plainLabel({}, Style::TextRole::Small, Style::ColourRole::Secondary);
    auto *row = new QHBoxLayout;
    row->addWidget(sectionHeader(u"Preview"_s));
    row->addStretch();
    row->addWidget(m_caption);
    return row;
}

QLayout *TemplatePreview::fetchRow(const FetchRow &row) {
    QLabel *title = plainLabel(row.title, Style::TextRole::Caption, Style::ColourRole::Secondary);
    m_input = new BorderedField(row.prompt);
    m_input->setMaximumWidth(Style::scaled(row.fieldWidth));
    m_input->setAccessibleName(row.title);
    if (row.isMonospaced)
        m_input->setMonospaced();
    title->setBuddy(m_input);
    m_fetch = new Button(u"Fetch"_s);
    m_clear = new Button(u"Clear"_s);

    auto *line = new QHBoxLayout;
    line->setSpacing(Style::rowSpacing);
    line->addWidget(title);
    // At its width wherever there is room; a narrow pane with all buttons shown has less.
    constexpr int aboveAll = 1000;
    line->addWidget(m_input, aboveAll);
    line->addWidget(m_fetch);
    line->addWidget(m_clear);
    line->addStretch(1);

    const auto fetch = [this] { m_source.fetch(m_input->text()); };
    connect(m_input, &QLineEdit::returnPressed, this, fetch);
    connect(m_input, &QLineEdit::textChanged, this, &TemplatePreview::refresh);
    connect(m_fetch, &QPushButton::clicked, this, fetch);
    connect(m_clear, &QPushButton::clicked, this, [this] { m_source.clear(); });
    return line;
}

void TemplatePreview::refresh() {
    m_caption->setText(m_source.caption());
    const QString styled = styledMarked(m_source.rendered());
    if (styled != m_box->text()) // or a selection would be lost for nothing
        m_box->setText(styled);
    m_error->setText(m_source.error().value_or(QString()));
    m_error->setVisible(m_source.error().has_value());
    m_fetch->setText(m_source.isFetching() ? u"Fetching…"_s : u"Fetch"_s);
    m_fetch->setEnabled(!m_source.isFetching() && !Text::trimmedView(m_input->text()).isEmpty());
    m_clear->setVisible(m_source.showsReal());
}

JiraTemplatePreview::JiraTemplatePreview(JiraPreviewSource &source, QWidget *parent)
    : TemplatePreview(source, {u"Try a real ticket:"_s, u"AB-1234"_s, 110, true},
                      samplePicker(source), parent) {}

ConfluenceTemplatePreview::ConfluenceTemplatePreview(ConfluencePreviewSource &source,
                                                     QWidget *parent)
    : TemplatePreview(source, {u"Try a real page:"_s, u"Paste a page URL"_s, 260, false}, nullptr,
                      parent) {}
