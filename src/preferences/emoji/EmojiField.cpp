#include "preferences/emoji/EmojiField.h"

#include "platform/wording.h"
#include "preferences/emoji/EmojiPicker.h"

#include <QKeyEvent>

EmojiField::EmojiField(const QString &name, QWidget *parent) : BorderedField({}, parent) {
    setAccessibleName(name);
    followTextSize();
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Ignored); // as high as the field beside it
    setAlignment(Qt::AlignCenter);
    Style::dress(this, Style::TextRole::Emoji);
}

void EmojiField::followTextSize() {
    constexpr int fieldWidth = 64;
    setFixedWidth(Style::scaled(fieldWidth));
}

bool EmojiField::event(QEvent *event) {
    if (event->type() == QEvent::ApplicationFontChange)
        followTextSize();
    return BorderedField::event(event);
}

void EmojiField::replaceByPicking() {
    setFocus(Qt::OtherFocusReason);
    selectAll();
    QMetaObject::invokeMethod(
        this, [this] { EmojiPicker::openFor(this); }, Qt::QueuedConnection);
}

void EmojiField::keyPressEvent(QKeyEvent *event) {
    if (QKeySequence(event->keyCombination()) == QKeySequence(wording().emojiPickerKeys)) {
        EmojiPicker::openFor(this);
        return;
    }
    BorderedField::keyPressEvent(event);
}
