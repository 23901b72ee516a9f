#pragma once

#include <QTextEdit>

/// A plain-text editor that wraps at its width and shows a text in its place while it is empty.
/// Return never breaks the line; line breaks only arrive by pasting.
class PlaceholderTextView : public QTextEdit {
    Q_OBJECT

public:
    explicit PlaceholderTextView(QWidget *parent = nullptr);

    /// The height that the text needs at the present width; an empty one needs a line.
    int contentHeight() const;

    /// Where the caret is, or where the selection starts, in UTF-16 units.
    int cursorPosition() const { return textCursor().selectionStart(); }
    /// The place of the one unit at `position`, in global coordinates.
    QRect unitRect(int position) const;

Q_SIGNALS:
    /// The text or the width has changed, so the height may have.
    void contentHeightChanged();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
};
