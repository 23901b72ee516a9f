#include "preferences/ConfluenceTab.h"

#include "preferences/kit/Caption.h"
#include "preferences/kit/Style.h"
#include "preferences/template/TemplateFieldBlock.h"
#include "preferences/template/TemplatePreview.h"
#include "storage/Settings.h"

#include <QVBoxLayout>

using namespace Qt::StringLiterals;

ConfluenceTab::ConfluenceTab(ConfluencePreviewSource &preview, QWidget *parent) : QWidget(parent) {
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Style::blockSpacing);
    column->addWidget(new TemplateFieldBlock(
        Settings::shared().confluenceTemplate, Settings::defaultConfluenceTemplate(),
        TemplateCatalog::confluencePlaceholders(), TemplateField::Grip::None));
    column->addWidget(new Caption(
        u"Type `{` or click a chip to insert a field. `{space}` and `{type}` are read from the "
        "page URL; `{title}` is fetched. Use `<i>…</i>` / `<b>…</b>` for italic / bold."_s));
    column->addWidget(new ConfluenceTemplatePreview(preview));
    column->addStretch();
}
