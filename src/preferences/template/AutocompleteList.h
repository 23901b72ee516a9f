#pragma once

#include "model/TemplateCatalog.h"
#include "preferences/kit/Popover.h"

/// The popover that offers every placeholder of a template, in order. It is for the mouse: the
/// keyboard stays with the text.
class AutocompleteList : public Popover {
    Q_OBJECT

public:
    AutocompleteList(const QList<TemplatePlaceholder> &placeholders, QWidget *parent);

    QSize sizeHint() const override;

Q_SIGNALS:
    void selected(const TemplatePlaceholder &placeholder);
};
