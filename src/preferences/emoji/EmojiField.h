#pragma once

#include "preferences/kit/BorderedField.h"

/// A field for an emoji, where a key combination opens the picker.
class EmojiField : public BorderedField {
    Q_OBJECT

public:
    explicit EmojiField(const QString &name, QWidget *parent = nullptr);

    /// Takes the focus with all of its text selected and opens the picker in a later turn of the
    /// event loop, so that what is picked replaces what was there.
    void replaceByPicking();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    bool event(QEvent *event) override;

private:
    void followTextSize();
};
