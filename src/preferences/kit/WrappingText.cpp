#include "preferences/kit/WrappingText.h"

#include <QPainter>
#include <QTextDocument>
#include <QWheelEvent>

#include <memory>

namespace {
constexpr int sideMargin = 3; ///< room for the ring of the focus
}

WrappingText::WrappingText(const QString &name, QWidget *parent) : QTextEdit(parent) {
    setAccessibleName(name);
    setFrameShape(QFrame::NoFrame);
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTabChangesFocus(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    document()->setDocumentMargin(sideMargin);
    viewport()->setAutoFillBackground(false);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    connect(this, &QTextEdit::textChanged, this, [this] {
        m_heights.clear();
        updateGeometry();
    });
}

void WrappingText::showPlain(const QString &text, Style::TextRole role, Style::ColourRole colour) {
    Style::dress(this, role, colour);
    if (text != toPlainText() || fontUnderline())
        setPlainText(text);
}

void WrappingText::showLink(const QString &html, Style::TextRole role) {
    Style::dress(this, role, Style::ColourRole::Link);
    setHtml(QStringLiteral("<u>%1</u>").arg(html));
}

void WrappingText::changeEvent(QEvent *event) {
    if (event->type() == QEvent::FontChange)
        m_heights.clear();
    QTextEdit::changeEvent(event);
}

int WrappingText::heightForWidth(int width) const {
    if (const auto known = m_heights.constFind(width); known != m_heights.cend())
        return *known;
    const std::unique_ptr<QTextDocument> copy(document()->clone());
    copy->setDefaultFont(font());
    copy->setDefaultTextOption(document()->defaultTextOption());
    copy->setTextWidth(width);
    return *m_heights.insert(width, qCeil(copy->size().height()));
}

QSize WrappingText::sizeHint() const {
    const int wanted = Style::scaled(220);
    return {wanted, heightForWidth(width() > 0 ? width() : wanted)};
}

QSize WrappingText::minimumSizeHint() const {
    return {Style::scaled(60), fontMetrics().height() + 2 * sideMargin};
}

void WrappingText::paintEvent(QPaintEvent *event) {
    QTextEdit::paintEvent(event);
    if (hasFocus()) {
        QPainter painter(viewport());
        Style::paintFocusRing(painter, viewport()->rect(), Style::chipRadius, palette());
    }
}

void WrappingText::wheelEvent(QWheelEvent *event) {
    event->ignore(); // there is nothing to scroll here, but around it there may be
}
