#include "preferences/template/PlaceholderTextView.h"

#include "preferences/kit/SlimScrollBar.h"
#include "preferences/kit/Style.h"

#include <QAbstractTextDocumentLayout>
#include <QKeyEvent>
#include <QTextDocument>

namespace {
constexpr int horizontalInset = 2 + 5; ///< of the container, and of each line in it
constexpr int verticalInset = 3;
constexpr int leastHeight = 18;
} // namespace

PlaceholderTextView::PlaceholderTextView(QWidget *parent) : QTextEdit(parent) {
    setAcceptRichText(false);
    setFrameShape(QFrame::NoFrame);
    setTabChangesFocus(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(0);
    setViewportMargins(horizontalInset, verticalInset, horizontalInset, verticalInset);
    setPlaceholderText(QStringLiteral("{key} - {TYPE} - {summary}"));
    new SlimScrollBar(this);
    Style::dress(this, Style::TextRole::Code);
    connect(this, &QTextEdit::textChanged, this, &PlaceholderTextView::contentHeightChanged);
}

int PlaceholderTextView::contentHeight() const {
    const qreal used = document()->documentLayout()->documentSize().height();
    return std::max(qCeil(used + 2 * verticalInset), leastHeight);
}

QRect PlaceholderTextView::unitRect(int position) const {
    QTextCursor cursor(document());
    cursor.setPosition(position);
    QRect rect = cursorRect(cursor);
    cursor.setPosition(position + 1);
    const QRect after = cursorRect(cursor);
    if (after.top() == rect.top()) // else the line wraps right behind it
        rect.setRight(after.left());
    return {viewport()->mapToGlobal(rect.topLeft()), rect.size()};
}

void PlaceholderTextView::keyPressEvent(QKeyEvent *event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        event->accept();
        return;
    }
    QTextEdit::keyPressEvent(event);
}

void PlaceholderTextView::resizeEvent(QResizeEvent *event) {
    QTextEdit::resizeEvent(event);
    if (event->size().width() != event->oldSize().width())
        Q_EMIT contentHeightChanged();
}

void PlaceholderTextView::changeEvent(QEvent *event) {
    QTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        Q_EMIT contentHeightChanged();
}
