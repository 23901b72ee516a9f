#pragma once

#include "preferences/kit/Style.h"

#include <QHash>
#include <QTextEdit>

/// Text to read and select, as high as it needs to be. It wraps between words and, where a word is
/// too long (addresses are), within it.
class WrappingText : public QTextEdit {
    Q_OBJECT

public:
    /// `name` is what the text is, for those who don't see where it stands.
    explicit WrappingText(const QString &name, QWidget *parent = nullptr);

    void showPlain(const QString &text, Style::TextRole role, Style::ColourRole colour);
    /// `html` is rich text, all of it underlined like a link.
    void showLink(const QString &html, Style::TextRole role);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    mutable QHash<int, int> m_heights; ///< by width; layouts ask for the same ones many times
};
