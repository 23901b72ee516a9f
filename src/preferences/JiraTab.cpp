#include "preferences/JiraTab.h"

#include "preferences/emoji/EmojiTable.h"
#include "preferences/kit/Caption.h"
#include "preferences/kit/Style.h"
#include "preferences/template/TemplateFieldBlock.h"
#include "preferences/template/TemplatePreview.h"
#include "storage/Settings.h"

#include <QVBoxLayout>

using namespace Qt::StringLiterals;

JiraTab::JiraTab(JiraPreviewSource &preview, QWidget *parent) : QWidget(parent) {
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Style::blockSpacing);
    column->addWidget(new TemplateFieldBlock(
        Settings::shared().displayTemplate, Settings::defaultDisplayTemplate(),
        TemplateCatalog::placeholders(), TemplateField::Grip::Resizes));
    column->addWidget(new Caption(
        u"Type `{` or click a chip to insert a field. Wrap comment-only parts in `<c>…</c>` so "
        "they vanish on non-comment links, and `<i>…</i>` / `<b>…</b>` for italic / bold."_s));
    column->addWidget(new JiraTemplatePreview(preview));
    column->addSpacing(Style::sectionSpacing - Style::blockSpacing);
    column->addWidget(new EmojiTable);
    column->addStretch();
}
