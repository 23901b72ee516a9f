#include "preferences/template/TemplateFieldBlock.h"

#include "preferences/SettingsBinding.h"
#include "preferences/kit/Button.h"
#include "preferences/kit/Chip.h"
#include "preferences/kit/FlowLayout.h"
#include "preferences/kit/Labels.h"
#include "preferences/kit/Style.h"

#include <QHBoxLayout>

using namespace Qt::StringLiterals;

TemplateFieldBlock::TemplateFieldBlock(Setting<QString> &setting, const QString &standard,
                                       const QList<TemplatePlaceholder> &placeholders,
                                       TemplateField::Grip grip, QWidget *parent)
    : QWidget(parent), m_field(new TemplateField(u"Display format"_s, placeholders, grip)) {
    auto *reset = new Button(u"Reset"_s);
    reset->setToolTip(u"Restore the default template."_s);
    auto *row = new QHBoxLayout;
    row->setSpacing(Style::rowSpacing);
    row->addWidget(m_field, 1);
    row->addWidget(reset, 0, Qt::AlignTop);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Style::tightSpacing);
    column->addWidget(fieldLabel(u"Display format"_s));
    column->addLayout(row);
    column->addWidget(chipRow(placeholders));

    connect(m_field, &TemplateField::textEdited, this,
            [&setting](const QString &text) { setting.type(text); });
    connect(reset, &Button::clicked, this, [&setting, standard] { setting = standard; });
    followSettings(this, [this, &setting] { m_field->setText(setting()); });
}

QWidget *TemplateFieldBlock::chipRow(const QList<TemplatePlaceholder> &placeholders) {
    auto *row = new QWidget;
    auto *flow = new FlowLayout(row);
    for (const TemplatePlaceholder &placeholder : placeholders) {
        const QString token = placeholder.token;
        auto *chip = new Chip(token, u"Insert "_s + placeholder.label);
        connect(chip, &Chip::clicked, m_field, [this, token] { m_field->insertAtCursor(token); });
        flow->addWidget(chip);
    }
    return row;
}
