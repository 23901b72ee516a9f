#pragma once

#include "model/TemplateCatalog.h"
#include "preferences/template/TemplateField.h"
#include "storage/Setting.h"

#include <QWidget>

/// The part of a tab that edits one template: its label, the editor with "Reset" beside it, and a
/// chip for each placeholder. Main thread only.
class TemplateFieldBlock : public QWidget {
    Q_OBJECT

public:
    /// Edits `setting`, which "Reset" sets to `standard`.
    TemplateFieldBlock(Setting<QString> &setting, const QString &standard,
                       const QList<TemplatePlaceholder> &placeholders, TemplateField::Grip grip,
                       QWidget *parent = nullptr);

private:
    QWidget *chipRow(const QList<TemplatePlaceholder> &placeholders);

    TemplateField *m_field;
};
