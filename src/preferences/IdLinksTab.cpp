#include "preferences/IdLinksTab.h"

#include "clients/AccountClient.h"
#include "clipboard/Clipboard.h"
#include "preferences/FormatPicker.h"
#include "preferences/SettingsBinding.h"
#include "preferences/kit/BorderedField.h"
#include "preferences/kit/Caption.h"
#include "preferences/kit/Labels.h"
#include "preferences/kit/WrappingText.h"

#include <QHBoxLayout>

using namespace Qt::StringLiterals;

namespace {

QString sampleId() {
    return u"0123456789abcdef01234567"_s;
}

/// A quiet label and, beside it, what it announces.
QHBoxLayout *announced(const QString &label, WrappingText *text) {
    auto *row = new QHBoxLayout;
    row->setSpacing(Style::tightSpacing);
    auto *caption = new Caption(label);
    caption->setWordWrap(false);
    caption->setContentsMargins(0, 3, 0, 0); // level with the text beside it, which has a margin
    row->addWidget(caption, 0, Qt::AlignTop);
    row->addWidget(text, 1);
    return row;
}

BorderedField *baseField() {
    auto *field = new BorderedField(u"https://app.example.com/records/"_s);
    field->setAccessibleName(u"Base URL"_s);
    QObject::connect(field, &QLineEdit::textChanged, field,
                     [](const QString &text) { Settings::shared().accountBaseURL.type(text); });
    followSettings(field, [field] { field->follow(Settings::shared().accountBaseURL()); });
    return field;
}

} // namespace

IdLinksTab::IdLinksTab(QWidget *parent) : QWidget(parent) {
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Style::sectionSpacing);
    column->addWidget(baseSection());
    column->addWidget(formatSection());
    column->addStretch();
    followSettings(this, [this] { refresh(); });
}

QWidget *IdLinksTab::baseSection() {
    auto *section = new QWidget;
    QVBoxLayout *column = sectionColumn(section, u"ID links"_s, Style::blockSpacing);
    auto *row = new QHBoxLayout;
    row->setSpacing(Style::rowSpacing);
    row->addWidget(fieldLabel(u"Base URL"_s));
    row->addWidget(baseField(), 1);
    column->addLayout(row);
    column->addWidget(new Caption(
        u"Copy a 24-character hex id (e.g. a MongoDB ObjectId), hit your hotkey, and it pastes a "
        "link to this URL + the id — no API call or token needed. A trailing slash is added "
        "automatically. Leave blank to turn ID links off."_s));
    m_link = new WrappingText(u"Link"_s);
    column->addLayout(announced(u"Link:"_s, m_link));
    return section;
}

QWidget *IdLinksTab::formatSection() {
    auto *section = new QWidget;
    QVBoxLayout *column = sectionColumn(section, u"Paste format"_s, Style::blockSpacing);
    column->addWidget(makeFormatPicker(u"ID link paste format"_s, PasteFormats::accountFormats,
                                       Settings::shared().accountPasteFormat));
    column->addWidget(new Caption(
        u"ID links have their own format (Jira/Confluence keep the General setting). URL Only "
        "pastes just the address — ideal for a browser bar. The others show the id as the link "
        "text."_s));
    m_pasted = new WrappingText(u"Pastes as"_s);
    column->addLayout(announced(u"Pastes as:"_s, m_pasted));
    return section;
}

void IdLinksTab::refresh() {
    const auto sample = AccountClient::extractRef(sampleId(), AccountClient::normalizedBase());
    if (!sample) {
        for (WrappingText *text : {m_link, m_pasted})
            text->showPlain(u"Set a base URL above to enable ID links."_s, Style::TextRole::Caption,
                            Style::ColourRole::Secondary);
        return;
    }
    m_link->showPlain(sample->url, Style::TextRole::Caption, Style::ColourRole::Primary);
    const PasteFormat format = Settings::shared().accountPasteFormat();
    if (format == PasteFormat::RichLink)
        m_pasted->showLink(sample->id, Style::TextRole::Caption);
    else
        m_pasted->showPlain(Clipboard::plainRepresentation(sample->id, sample->url, format),
                            Style::TextRole::CodeCaption, Style::ColourRole::Primary);
}
