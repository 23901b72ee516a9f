#pragma once

#include "preferences/kit/Style.h"

#include <QLineEdit>

/// A one-line text field in the house style. For secrets set the echo mode to Password; the prompt
/// is the placeholder text and, as long as no other is given, the accessible name.
class BorderedField : public QLineEdit {
    Q_OBJECT

public:
    explicit BorderedField(const QString &prompt = {}, QWidget *parent = nullptr);

    /// Sets the text in the monospaced font.
    void setMonospaced();

    /// Brings the field in line with a value from elsewhere, leaving text and caret alone when the
    /// text is the same already.
    void follow(const QString &text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};
